#include "components/mail/smtp_delivery.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <memory>
#include <span>

#include <curl/curl.h>
#include <pthread.h>
#include <signal.h>

#include "core/text/error.h"
#include "core/text/printable.h"
#include "core/text/text.h"

namespace zrl::mail {

namespace {

constexpr std::size_t longest_reply = 1000;

void check(CURLcode code) {
  if (code != CURLE_OK) throw Error(code, curl_easy_strerror(code));
}

void initialise_library() {
  static const CURLcode code = curl_global_init(CURL_GLOBAL_DEFAULT);
  check(code);
}

struct ReleaseHandle {
  void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
using Handle = std::unique_ptr<CURL, ReleaseHandle>;

struct ReleaseList {
  void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};

class List {
 public:
  void add(const std::string& text) {
    curl_slist* longer = curl_slist_append(list_.get(), text.c_str());
    if (longer == nullptr) check(CURLE_OUT_OF_MEMORY);
    static_cast<void>(list_.release());
    list_.reset(longer);
  }
  curl_slist* get() const { return list_.get(); }

 private:
  std::unique_ptr<curl_slist, ReleaseList> list_;
};

template <typename Value>
void set(const Handle& handle, CURLoption option, Value value) {
  check(curl_easy_setopt(handle.get(), option, value));
}

bool is_ipv6(std::string_view host) {
  return host.find(':') != host.npos;
}

// The host in the form for a URL.
std::string url_host(std::string_view host) {
  if (host.starts_with('[') || !is_ipv6(host)) return std::string(host);
  return "[" + std::string(host) + "]";
}

// A thread that writes to a connection which the server has closed must not end the program.
class NoPipeSignal {
 public:
  NoPipeSignal() {
    sigset_t pipe;
    ::sigemptyset(&pipe);
    ::sigaddset(&pipe, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &pipe, &before_);
  }
  NoPipeSignal(const NoPipeSignal&) = delete;
  NoPipeSignal& operator=(const NoPipeSignal&) = delete;
  ~NoPipeSignal() {
    sigset_t pipe;
    ::sigemptyset(&pipe);
    ::sigaddset(&pipe, SIGPIPE);
    const timespec at_once{};
    while (::sigtimedwait(&pipe, nullptr, &at_once) > 0) {
    }
    ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }

 private:
  sigset_t before_{};
};

// The conversation with the server, followed through the library's callbacks.
class Conversation {
 public:
  Conversation(const SmtpDelivery& delivery, const std::atomic<bool>& cancelled)
      : delivery_(delivery), cancelled_(cancelled) {}

  void run() {
    prepare();
    const NoPipeSignal no_signal;
    const CURLcode code = curl_easy_perform(handle_.get());
    // The mail is delivered once the server has accepted it, whatever fails afterwards.
    if (accepted_) return;
    if (cancelled_) throw Error(CURLE_ABORTED_BY_CALLBACK, "the sending was stopped");
    if (code_ >= 400) throw Error(code_, "the server refused it: " + printable(reply_));
    const std::string_view told = problem_.front() != '\0' ? problem_.data() : curl_easy_strerror(code);
    throw Error(code, "no mail could be sent to this server: " + printable(told));
  }

 private:
  void prepare();

  static std::size_t take_line(char* data, std::size_t size, std::size_t count, void* self) {
    static_cast<Conversation*>(self)->on_line(trim({data, size * count}));
    return size * count;
  }
  static std::size_t drop(char*, std::size_t size, std::size_t count, void*) { return size * count; }
  static std::size_t give(char* out, std::size_t size, std::size_t count, void* self) {
    return static_cast<Conversation*>(self)->next_bytes({out, size * count});
  }
  static int on_progress(void* self, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    const Conversation& conversation = *static_cast<Conversation*>(self);
    return conversation.cancelled_ || conversation.over_ ? 1 : 0;
  }
  static int on_trace(CURL*, curl_infotype type, char* data, std::size_t size, void* self) {
    const bool farewell = type == CURLINFO_HEADER_OUT && std::string_view(data, size).starts_with("QUIT");
    if (farewell) static_cast<Conversation*>(self)->over_ = true;
    return 0;
  }

  // A line of a reply (RFC 5321, section 4.2.1).
  void on_line(std::string_view line) {
    if (over_) return;
    if (reply_is_complete_) reply_.clear();
    if (!reply_.empty()) reply_ += ' ';
    reply_ += line.substr(0, longest_reply - std::min(longest_reply, reply_.size()));
    reply_is_complete_ = line.size() < 4 || line[3] != '-';
    code_ = 0;
    std::from_chars(line.data(), line.data() + std::min<std::size_t>(line.size(), 3), code_);
    const bool all_sent = sent_ == delivery_.source.size();
    if (reply_is_complete_ && all_sent && code_ / 100 == 2) accepted_ = true;
  }

  std::size_t next_bytes(std::span<char> out) {
    const std::size_t size = std::min(out.size(), delivery_.source.size() - sent_);
    std::memcpy(out.data(), delivery_.source.data() + sent_, size);
    sent_ += size;
    return size;
  }

  const SmtpDelivery& delivery_;
  const std::atomic<bool>& cancelled_;
  Handle handle_{curl_easy_init()};
  List recipients_;
  List addresses_;
  std::array<char, CURL_ERROR_SIZE> problem_{};

  std::size_t sent_ = 0;
  std::string reply_;
  bool reply_is_complete_ = true;
  int code_ = 0;
  bool accepted_ = false;
  bool over_ = false;  // QUIT has been sent, and its reply is not waited for
};

void Conversation::prepare() {
  if (!handle_) check(CURLE_FAILED_INIT);
  const std::string host = url_host(delivery_.server.host);
  const std::string port = std::to_string(delivery_.server.port);
  set(handle_, CURLOPT_URL, ("smtp://" + host + ":" + port).c_str());
  set(handle_, CURLOPT_PROTOCOLS_STR, "smtp");
  set(handle_, CURLOPT_PROXY, "");  // even if the environment names one
  set(handle_, CURLOPT_NOSIGNAL, 1L);
  // The library then sends QUIT within the transfer, whose time is bounded.
  set(handle_, CURLOPT_FORBID_REUSE, 1L);
  if (!delivery_.addresses.empty()) {
    std::string entry = host + ":" + port + ":";
    for (const std::string& address : delivery_.addresses) {
      if (!entry.ends_with(':')) entry += ',';
      entry += url_host(address);
    }
    addresses_.add(entry);
    set(handle_, CURLOPT_RESOLVE, addresses_.get());
  }

  set(handle_, CURLOPT_USE_SSL, static_cast<long>(CURLUSESSL_TRY));
  set(handle_, CURLOPT_SSL_VERIFYPEER, 0L);
  set(handle_, CURLOPT_SSL_VERIFYHOST, 0L);

  set(handle_, CURLOPT_MAIL_FROM, ("<" + delivery_.sender + ">").c_str());
  for (const std::string& recipient : delivery_.recipients) recipients_.add("<" + recipient + ">");
  set(handle_, CURLOPT_MAIL_RCPT, recipients_.get());
  set(handle_, CURLOPT_UPLOAD, 1L);
  set(handle_, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(delivery_.source.size()));
  set(handle_, CURLOPT_READFUNCTION, &give);
  set(handle_, CURLOPT_READDATA, static_cast<void*>(this));
  set(handle_, CURLOPT_WRITEFUNCTION, &drop);
  set(handle_, CURLOPT_HEADERFUNCTION, &take_line);
  set(handle_, CURLOPT_HEADERDATA, static_cast<void*>(this));
  set(handle_, CURLOPT_NOPROGRESS, 0L);
  set(handle_, CURLOPT_XFERINFOFUNCTION, &on_progress);
  set(handle_, CURLOPT_XFERINFODATA, static_cast<void*>(this));
  set(handle_, CURLOPT_VERBOSE, 1L);
  set(handle_, CURLOPT_DEBUGFUNCTION, &on_trace);
  set(handle_, CURLOPT_DEBUGDATA, static_cast<void*>(this));
  set(handle_, CURLOPT_ERRORBUFFER, problem_.data());

  const auto seconds = std::chrono::ceil<std::chrono::seconds>(delivery_.limits.reply).count();
  set(handle_, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(delivery_.limits.connect.count()));
  set(handle_, CURLOPT_SERVER_RESPONSE_TIMEOUT, static_cast<long>(seconds));
  set(handle_, CURLOPT_TIMEOUT_MS, static_cast<long>(delivery_.limits.total.count()));
}

}  // namespace

void deliver(const SmtpDelivery& delivery, const std::atomic<bool>& cancelled) {
  initialise_library();
  Conversation(delivery, cancelled).run();
}

}  // namespace zrl::mail
