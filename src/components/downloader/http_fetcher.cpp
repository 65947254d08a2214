#include "components/downloader/http_fetcher.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include <curl/curl.h>

#include "components/downloader/gzip_decoder.h"
#include "core/text/error.h"
#include "core/text/printable.h"
#include "core/text/text.h"
#include "core/text/utf8.h"

namespace zrl::downloader {

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr std::size_t files_at_a_time = 4;
constexpr long most_redirections = 3;
constexpr long buffer_bytes = 256 << 10;
constexpr milliseconds tick_interval{20};
constexpr std::size_t longest_reason = 300;

struct ReleaseEasy {
  void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
};
struct ReleaseHeaders {
  void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using Headers = std::unique_ptr<curl_slist, ReleaseHeaders>;
using Easy = std::unique_ptr<CURL, ReleaseEasy>;
struct ReleaseMulti {
  void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
};
using Multi = std::unique_ptr<CURLM, ReleaseMulti>;

void initialise_library() {
  static const CURLcode code = curl_global_init(CURL_GLOBAL_DEFAULT);
  if (code != CURLE_OK) throw Error(code, curl_easy_strerror(code));
}

template <typename Value>
void set(CURL* easy, CURLoption option, Value value) {
  const CURLcode code = curl_easy_setopt(easy, option, value);
  if (code != CURLE_OK) throw Error(code, curl_easy_strerror(code));
}

long get_number(CURL* easy, CURLINFO info) {
  long value = 0;
  curl_easy_getinfo(easy, info, &value);
  return value;
}

bool is_web_page(std::string_view type) {
  const std::string name = lower(trim(type.substr(0, type.find(';'))));
  return name == "text/html" || name == "application/xhtml+xml";
}

// The bytes that all files of a run may have together.
struct Budget {
  std::uint64_t left;
};

// A file on its way.
class Transfer {
 public:
  Transfer(FetchJob& job, const FetchSettings& settings, Budget& budget, milliseconds time)
      : job_(job),
        settings_(settings),
        budget_(budget),
        headers_(curl_slist_append(nullptr, "Accept-Encoding: gzip")),
        easy_(curl_easy_init()) {
    if (!easy_ || !headers_) throw std::bad_alloc();
    set_limits(time);
    set_trust();
    CURL* easy = easy_.get();
    set(easy, CURLOPT_URL, job.url.c_str());
    set(easy, CURLOPT_USERAGENT, "zrlconsole");
    set(easy, CURLOPT_HTTPHEADER, headers_.get());
    set(easy, CURLOPT_HEADERDATA, this);
    set(easy, CURLOPT_HEADERFUNCTION, &Transfer::receive_header);
    set(easy, CURLOPT_BUFFERSIZE, buffer_bytes);
    set(easy, CURLOPT_ERRORBUFFER, message_.data());
    set(easy, CURLOPT_PRIVATE, this);
    set(easy, CURLOPT_WRITEDATA, this);
    set(easy, CURLOPT_WRITEFUNCTION, &Transfer::receive);
  }
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

  CURL* handle() const { return easy_.get(); }
  const FetchJob& job() const { return job_; }

  void finish(CURLcode code) {
    const long status = get_number(handle(), CURLINFO_RESPONSE_CODE);
    const char* type = nullptr;
    curl_easy_getinfo(handle(), CURLINFO_CONTENT_TYPE, &type);
    if (status == 404 || status == 410) {
      job_.outcome = FetchJob::Outcome::not_published;
    } else if (!fault_.empty()) {
      fail(fault_);
    } else if (code != CURLE_OK) {
      fail(message_[0] != '\0' ? message_.data() : curl_easy_strerror(code));
    } else if (status != 200) {
      fail("the server answers with status " + std::to_string(status));
    } else if (type != nullptr && is_web_page(type)) {
      // A page for people in place of the file: a log-in, or an error page with a status of success.
      fail("the server sends a web page");
    } else if (!head_is_complete_ || (decoder_ && !decoder_->is_complete())) {
      fail("the answer ends too early");
    } else {
      complete();
    }
  }

  // The server could not be reached, or did not answer in time.
  bool was_unanswered(CURLcode code) const {
    curl_off_t asked = 0;
    curl_easy_getinfo(handle(), CURLINFO_PRETRANSFER_TIME_T, &asked);
    return code != CURLE_OK && get_number(handle(), CURLINFO_RESPONSE_CODE) == 0 &&
           get_number(handle(), CURLINFO_REDIRECT_COUNT) == 0 &&
           (asked == 0 || code == CURLE_OPERATION_TIMEDOUT);
  }

  void fail(std::string_view reason) {
    job_.outcome = FetchJob::Outcome::failed;
    job_.reason = printable(cut_between_characters(reason, longest_reason));
  }

 private:
  void set_limits(milliseconds time) const {
    CURL* easy = handle();
    const Limits& limits = settings_.limits;
    set(easy, CURLOPT_NOSIGNAL, 1L);
    set(easy, CURLOPT_QUICK_EXIT, 1L);  // a look-up that hangs must not delay the end
    set(easy, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(limits.connect.count()));
    set(easy, CURLOPT_TIMEOUT_MS, static_cast<long>(std::max(time, milliseconds(1)).count()));
    set(easy, CURLOPT_LOW_SPEED_LIMIT, limits.least_speed);
    set(easy, CURLOPT_LOW_SPEED_TIME, static_cast<long>(limits.stall.count()));
    // Covers only uncompressed files whose size is announced; count() checks the others.
    set(easy, CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(job_.byte_limit));
  }

  void set_trust() const {
    CURL* easy = handle();
    set(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    set(easy, CURLOPT_REDIR_PROTOCOLS_STR, settings_.encrypted_only ? "https" : "http,https");
    set(easy, CURLOPT_FOLLOWLOCATION, 1L);
    set(easy, CURLOPT_MAXREDIRS, most_redirections);
    set(easy, CURLOPT_SSL_VERIFYPEER, 1L);
    set(easy, CURLOPT_SSL_VERIFYHOST, 2L);
    if (settings_.certificates.empty()) return;
    set(easy, CURLOPT_CAINFO, settings_.certificates.c_str());
    set(easy, CURLOPT_CAPATH, nullptr);
  }

  static std::size_t receive(char* data, std::size_t, std::size_t size, void* self) {
    auto* transfer = static_cast<Transfer*>(self);
    try {
      transfer->take({data, size});
      return size;
    } catch (const std::exception& error) {
      transfer->fault_ = error.what();
      return size + 1;  // tells the library to stop
    }
  }

  static std::size_t receive_header(char* data, std::size_t, std::size_t size, void* self) {
    const std::string_view line(data, size);
    bool& complete = static_cast<Transfer*>(self)->head_is_complete_;
    if (line.starts_with("HTTP/")) complete = false;
    if (line == "\r\n" || line == "\n") complete = true;
    return size;
  }

  void take(std::string_view bytes) {
    if (get_number(handle(), CURLINFO_RESPONSE_CODE) != 200) {
      count(bytes);  // what comes with an error is not the file
      return;
    }
    if (!std::exchange(begun_, true)) choose_decoder();
    const auto keep = [this](std::string_view decoded) {
      count(decoded);
      job_.target->write(decoded);
    };
    if (decoder_) {
      decoder_->decode(bytes, keep);
    } else {
      keep(bytes);
    }
  }

  void choose_decoder() {
    curl_header* header = nullptr;
    if (curl_easy_header(handle(), "Content-Encoding", 0, CURLH_HEADER, -1, &header) != CURLHE_OK) return;
    const std::string name = lower(trim(header->value));
    if (header->amount > 1 || (name != "gzip" && name != "x-gzip" && name != "identity")) {
      throw Error(EINVAL, "the server sends a compression that it was not asked for");
    }
    if (name != "identity") decoder_.emplace();
  }

  void count(std::string_view bytes) {
    job_.bytes += bytes.size();
    if (job_.bytes > job_.byte_limit) {
      throw Error(EFBIG, "larger than " + std::to_string(job_.byte_limit) + " bytes");
    }
    if (bytes.size() > budget_.left) {
      throw Error(EFBIG, "all files together are larger than " +
                             std::to_string(settings_.limits.total_bytes) + " bytes");
    }
    budget_.left -= bytes.size();
  }

  void complete() {
    try {
      job_.target->complete();
      job_.outcome = FetchJob::Outcome::fetched;
    } catch (const Error& error) {
      fail(error.what());
    }
  }

  FetchJob& job_;
  const FetchSettings& settings_;
  Budget& budget_;
  Headers headers_;
  Easy easy_;
  std::optional<GzipDecoder> decoder_;
  bool head_is_complete_ = false;
  bool begun_ = false;
  std::array<char, CURL_ERROR_SIZE> message_{};
  std::string fault_;
};

class Run {
 public:
  Run(std::span<FetchJob> jobs, const FetchSettings& settings)
      : jobs_(jobs),
        settings_(settings),
        budget_{settings.limits.total_bytes},
        end_(Clock::now() + settings.limits.total),
        multi_(curl_multi_init()) {
    if (!multi_) throw std::bad_alloc();
  }
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;
  ~Run() {
    for (const auto& transfer : active_) curl_multi_remove_handle(multi_.get(), transfer->handle());
  }

  void run() {
    while (finished_ < jobs_.size()) {
      start_more();
      int running = 0;
      check(curl_multi_perform(multi_.get(), &running));
      collect();
      tick();
      if (finished_ == jobs_.size()) break;
      check(curl_multi_poll(multi_.get(), nullptr, 0, static_cast<int>(tick_interval.count()), nullptr));
    }
  }

 private:
  static void check(CURLMcode code) {
    if (code != CURLM_OK) throw Error(code, curl_multi_strerror(code));
  }

  void start_more() {
    while (next_ < jobs_.size() && active_.size() < files_at_a_time) {
      FetchJob& job = jobs_[next_++];
      const auto left = std::chrono::duration_cast<milliseconds>(end_ - Clock::now());
      if (left.count() <= 0) stopped_ = "the time for the update is over";
      if (!stopped_.empty()) {
        job.reason = stopped_;
        ++finished_;
        continue;
      }
      active_.push_back(
          std::make_unique<Transfer>(job, settings_, budget_, std::min(left, settings_.limits.file)));
      check(curl_multi_add_handle(multi_.get(), active_.back()->handle()));
    }
  }

  void collect() {
    int waiting = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &waiting)) {
      if (message->msg != CURLMSG_DONE) continue;
      const auto found = std::find_if(active_.begin(), active_.end(), [&](const auto& transfer) {
        return transfer->handle() == message->easy_handle;
      });
      const CURLcode code = message->data.result;
      const std::unique_ptr<Transfer> done = std::move(*found);
      active_.erase(found);
      curl_multi_remove_handle(multi_.get(), done->handle());
      done->finish(code);
      ++finished_;
      if (!done->was_unanswered(code)) {
        answered_ = true;
      } else if (!answered_ && stopped_.empty()) {
        stopped_ = done->job().reason;
      }
    }
  }

  void tick() {
    const Clock::time_point now = Clock::now();
    const bool last = finished_ == jobs_.size();
    if (!settings_.tick || (now - ticked_ < tick_interval && !last)) return;
    settings_.tick({finished_, jobs_.size(), settings_.limits.total_bytes - budget_.left});
    ticked_ = Clock::now();
  }

  std::span<FetchJob> jobs_;
  const FetchSettings& settings_;
  Budget budget_;
  Clock::time_point end_;
  Clock::time_point ticked_;
  Multi multi_;
  std::vector<std::unique_ptr<Transfer>> active_;
  std::size_t next_ = 0;
  std::size_t finished_ = 0;
  bool answered_ = false;
  std::string stopped_;  // why no further file is tried
};

}  // namespace

void fetch(std::span<FetchJob> jobs, const FetchSettings& settings) {
  initialise_library();
  Run(jobs, settings).run();
}

}  // namespace zrl::downloader
