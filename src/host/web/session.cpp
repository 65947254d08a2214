#include "host/web/session.h"

#include <algorithm>
#include <utility>

#include "core/text/error.h"
#include "host/web/random_token.h"
#include "host/web/responses.h"
#include "host/web/uploads.h"

namespace zrl::web {

namespace {

constexpr int close_too_many_tabs = 4003;

// A browser learns why only from an open WebSocket.
class Refusal : public ChannelListener {
 public:
  void on_open(std::shared_ptr<Channel> channel) override { channel->close(close_too_many_tabs); }
  bool on_text(std::string) override { return true; }
  void on_close(bool) override {}
};

}  // namespace

// A file on its way from a browser to a file list of a tab's.
class Session::UploadSink : public BodySink {
 public:
  UploadSink(std::shared_ptr<Tab> tab, std::shared_ptr<int> uploads, UploadTarget target,
             std::unique_ptr<UploadedFile> file)
      : tab_(std::move(tab)),
        uploads_(std::move(uploads)),
        target_(std::move(target)),
        file_(std::move(file)) {
    ++*uploads_;
  }
  UploadSink(const UploadSink&) = delete;
  UploadSink& operator=(const UploadSink&) = delete;
  ~UploadSink() override { --*uploads_; }

  std::uint64_t limit() const override { return UploadFolder::longest_file; }
  void take(std::string_view piece) override { file_->write(piece); }
  void finish(Reply reply) override {
    tab_->take_upload(std::move(target_), std::move(file_), std::move(reply));
  }

 private:
  std::shared_ptr<Tab> tab_;
  std::shared_ptr<int> uploads_;
  UploadTarget target_;
  std::unique_ptr<UploadedFile> file_;
};

Session::Session(IoLoop& loop, const ConsoleSettings& settings, const Times& times, std::size_t most_tabs,
                 std::string account, Callbacks callbacks)
    : loop_(loop),
      settings_(settings),
      times_(times),
      most_tabs_(most_tabs),
      account_(std::move(account)),
      callbacks_(std::move(callbacks)),
      audit_log_(settings.audit, account_) {}

std::shared_ptr<ChannelListener> Session::new_listener(std::string_view tab, Claim claim) {
  const auto found = tabs_.find(tab);
  if (found != tabs_.end() && (claim == Claim::own || !found->second->is_connected())) {
    return found->second->new_listener();
  }
  if (!make_room()) return std::make_shared<Refusal>();
  return new_tab()->new_listener();
}

bool Session::make_room() {
  if (tabs_.size() + ending_.size() < most_tabs_) return true;
  auto oldest = tabs_.end();
  for (auto it = tabs_.begin(); it != tabs_.end(); ++it) {
    if (!it->second->was_left()) continue;
    if (oldest == tabs_.end() || it->second->lost_since() < oldest->second->lost_since()) oldest = it;
  }
  if (oldest == tabs_.end()) return false;
  end_tab(oldest, Reason::over);
  return true;
}

std::shared_ptr<Tab> Session::new_tab() {
  std::string id = random_token();
  auto tab = std::make_shared<Tab>(loop_, settings_, times_, terminals_, TabIdentity{account_, id},
                                   Tab::Callbacks{.ended = [this](Tab& ended) { forget(ended); },
                                                  .finished = [this](Tab& over) { finished(over); },
                                                  .person_acted = [this] { acted(); },
                                                  .language_is = callbacks_.language_is});
  tabs_[std::move(id)] = tab;
  return tab;
}

Response Session::download(std::string_view token, bool head_only) {
  std::optional<std::filesystem::path> path;
  for (const auto& [id, tab] : tabs_) {
    if (!path) path = tab->offered().fetch(token, !head_only);
  }
  if (!path) return error_response(404, "no_file");
  Response response = file_response(*path);
  if (head_only) return response;
  audit_log_.note("", "download", path->string(), response.source ? "" : "the file is gone");
  return response;
}

std::variant<std::monostate, Response, std::shared_ptr<BodySink>> Session::receive_upload(
    const Request& request, std::string_view tab) {
  if (request.content_length > UploadFolder::longest_file) return error_response(413, "too_big");
  if (*uploads_ >= most_uploads) return error_response(503, "busy");
  std::optional<UploadTarget> target = parse_upload_target(request.upload);
  if (!target || request.content_type != "application/octet-stream")
    return error_response(400, "bad_request");
  const auto found = tabs_.find(tab);
  if (found == tabs_.end()) return error_response(409, "no_form");
  const UploadFolder folder(settings_.folder);
  try {
    folder.sweep();
    // Of one whose length is not given nothing but the limit is known.
    const std::uint64_t size =
        request.content_length > 0 ? request.content_length : UploadFolder::longest_file;
    if (!folder.has_room_for(size)) {
      audit_log_.note("", "upload", upload_name(target->name), "there is no room for more files");
      return error_response(507, "no_room");
    }
    acted();
    return std::make_shared<UploadSink>(found->second, uploads_, std::move(*target), folder.receive(size));
  } catch (const Error& failure) {
    audit_log_.note("", "upload", upload_name(target->name), failure.what());
    return error_response(500, "not_saved");
  }
}

std::optional<std::string_view> Session::expiry(Clock::time_point now) const {
  if (now - began_ >= times_.longest) return "the longest time of a session is over";
  if (now - last_act_ >= times_.idle) return "nobody used it";
  return {};
}

void Session::end_lost_tabs(Clock::time_point now) {
  for (auto it = tabs_.begin(); it != tabs_.end();) {
    const auto next = std::next(it);
    const auto lost = it->second->lost_since();
    if (lost && now - *lost >= times_.lost) end_tab(it, Reason::over);
    it = next;
  }
}

void Session::end(Reason reason) {
  // Those that are ending already may be in the middle of a long action.
  for (const auto& tab : std::list(ending_)) {
    if (reason == Reason::stopping) tab->end(reason);
  }
  while (!tabs_.empty()) end_tab(tabs_.begin(), reason);
  ended_ = true;
  finish_if_over();
}

void Session::end_tab(Tabs::iterator found, Reason reason) {
  const std::shared_ptr<Tab> tab = std::move(found->second);
  tabs_.erase(found);
  emptied_ = Clock::now();
  ending_.push_back(tab);
  tab->end(reason);
}

void Session::forget(const Tab& tab) {
  const auto found =
      std::find_if(tabs_.begin(), tabs_.end(), [&](const auto& entry) { return entry.second.get() == &tab; });
  if (found == tabs_.end()) return;
  ending_.push_back(std::move(found->second));
  tabs_.erase(found);
  emptied_ = Clock::now();
}

void Session::finished(const Tab& tab) {
  ending_.remove_if([&](const std::shared_ptr<Tab>& ending) { return ending.get() == &tab; });
  finish_if_over();
}

void Session::finish_if_over() {
  if (!ended_ || !ending_.empty() || std::exchange(finished_, true)) return;
  callbacks_.finished(*this);
}

}  // namespace zrl::web
