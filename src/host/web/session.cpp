#include "host/web/session.h"

#include "core/text/error.h"
#include "host/web/outgoing.h"
#include "host/web/responses.h"
#include "host/web/uploads.h"

namespace zrl::web {

namespace {

constexpr int close_replaced = 4001;
constexpr int close_over = 4002;
constexpr int close_going_away = 1001;
constexpr int close_violated = 1008;

}  // namespace

// Knows which of the session's WebSockets it listens to: the end of an old one may come after the
// beginning of the next.
class Session::Listener : public ChannelListener {
 public:
  explicit Listener(std::shared_ptr<Session> session) : session_(std::move(session)) {}

  void on_open(std::shared_ptr<Channel> channel) override {
    connection_ = session_->connected(std::move(channel));
  }
  bool on_text(std::string text) override { return session_->received(connection_, std::move(text)); }
  void on_close() override { session_->disconnected(connection_); }

 private:
  std::shared_ptr<Session> session_;
  std::uint64_t connection_ = 0;
};

// A file on its way from a browser to a file list of the session's.
class Session::UploadSink : public BodySink {
 public:
  UploadSink(std::shared_ptr<Session> session, UploadTarget target, std::unique_ptr<UploadedFile> file)
      : session_(std::move(session)), target_(std::move(target)), file_(std::move(file)) {
    ++session_->uploads_;
  }
  UploadSink(const UploadSink&) = delete;
  UploadSink& operator=(const UploadSink&) = delete;
  ~UploadSink() override { --session_->uploads_; }

  std::uint64_t limit() const override { return UploadFolder::longest_file; }
  void take(std::string_view piece) override { file_->write(piece); }

  void finish(Reply reply) override {
    if (session_->ended_ || !session_->thread_.joinable()) return reply(error_response(409, "no_form"));
    auto on_loop = [&loop = session_->loop_, reply = std::move(reply)](Response response) {
      loop.post([reply, response = std::move(response)] { reply(response); });
    };
    session_->last_act_ = Clock::now();
    session_->inbox_.push(
        {Incoming::Kind::upload,
         0,
         {},
         std::make_shared<PendingUpload>(std::move(target_), std::move(file_), std::move(on_loop))});
  }

 private:
  std::shared_ptr<Session> session_;
  UploadTarget target_;
  std::unique_ptr<UploadedFile> file_;
};

Session::Session(IoLoop& loop, const ConsoleSettings& settings, const Times& times, std::string account,
                 Callbacks callbacks)
    : loop_(loop),
      settings_(settings),
      times_(times),
      account_(std::move(account)),
      callbacks_(std::move(callbacks)),
      inbox_([this] {
        post([](Session& self) {
          if (self.channel_) self.channel_->resume();
        });
      }),
      audit_log_(settings.audit, account_) {}

Session::~Session() {
  if (!thread_.joinable()) return;
  if (thread_.get_id() == std::this_thread::get_id()) {
    thread_.detach();
  } else {
    thread_.join();
  }
}

std::shared_ptr<ChannelListener> Session::new_listener() {
  return std::make_shared<Listener>(shared_from_this());
}

Response Session::download(std::string_view token, bool head_only) {
  const std::optional<std::filesystem::path> path = offered_.fetch(token, !head_only);
  if (!path) return error_response(404, "no_file");
  Response response = file_response(*path);
  if (head_only) return response;
  audit_log_.note("", "download", path->string(), response.source ? "" : "the file is gone");
  return response;
}

std::variant<std::monostate, Response, std::shared_ptr<BodySink>> Session::receive_upload(
    const Request& request) {
  if (request.content_length > UploadFolder::longest_file) return error_response(413, "too_big");
  if (uploads_ >= most_uploads) return error_response(503, "busy");
  std::optional<UploadTarget> target = parse_upload_target(request.upload);
  if (!target || request.content_type != "application/octet-stream")
    return error_response(400, "bad_request");
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
    return std::make_shared<UploadSink>(shared_from_this(), std::move(*target), folder.receive(size));
  } catch (const Error& failure) {
    audit_log_.note("", "upload", upload_name(target->name), failure.what());
    return error_response(500, "not_saved");
  }
}

std::optional<std::string_view> Session::expiry(Clock::time_point now) const {
  if (now - began_ >= times_.longest) return "the longest time of a session is over";
  if (now - last_act_ >= times_.idle) return "nobody used it";
  if (lost_ && now - *lost_ >= times_.lost) return "the browser was gone";
  return {};
}

void Session::end(Reason reason) {
  if (channel_) channel_->close(reason == Reason::stopping ? close_going_away : close_over);
  channel_.reset();
  ended_ = true;
  if (thread_.joinable()) {
    inbox_.push({reason == Reason::stopping ? Incoming::Kind::stopping : Incoming::Kind::ended, 0, {}});
  } else {
    callbacks_.finished(*this);
  }
}

std::uint64_t Session::connected(std::shared_ptr<Channel> channel) {
  if (ended_) {
    channel->close(close_over);
    return 0;
  }
  if (channel_) channel_->close(close_replaced);
  channel_ = std::move(channel);
  lost_.reset();
  greeted_ = false;
  inbox_.push({Incoming::Kind::connected, ++connection_, {}});
  if (!thread_.joinable()) start_thread();
  return connection_;
}

bool Session::received(std::uint64_t connection, std::string text) {
  if (ended_ || connection != connection_) return true;
  return inbox_.push({Incoming::Kind::message, connection, std::move(text)});
}

void Session::disconnected(std::uint64_t connection) {
  if (ended_ || connection != connection_) return;
  channel_.reset();
  lost_ = Clock::now();
}

void Session::start_thread() {
  thread_ = std::thread([self = shared_from_this()] { self->run_console(); });
}

void Session::run_console() {
  bool failed = false;
  try {
    SessionConsole(settings_, account_, inbox_, offered_, *this).run();
  } catch (const std::exception&) {
    failed = true;
  }
  loop_.post([self = shared_from_this(), failed] {
    if (failed && !self->ended_) {
      if (self->channel_) self->channel_->close(close_over);
      self->channel_.reset();
      self->ended_ = true;
      self->callbacks_.ended(*self);
    }
    self->thread_.join();
    self->callbacks_.finished(*self);
  });
}

void Session::post(std::function<void(Session&)> task) {
  loop_.post([self = shared_from_this(), task = std::move(task)] { task(*self); });
}

void Session::send(std::uint64_t connection, std::string message) {
  post([connection, text = std::move(message)](Session& self) mutable {
    if (!self.channel_ || self.connection_ != connection) return;
    self.channel_->send(std::move(text));
    if (!self.greeted_) {
      self.greeted_ = true;
      if (self.busy_ && self.busy_->is_long) self.tell_busy();
    }
  });
}

void Session::violated(std::uint64_t connection) {
  post([connection](Session& self) {
    if (self.channel_ && self.connection_ == connection) self.channel_->close(close_violated);
  });
}

void Session::person_acted() {
  post([](Session& self) { self.last_act_ = Clock::now(); });
}

void Session::action_began() {
  post([](Session& self) {
    self.busy_ = Busy();
    const std::uint64_t action = ++self.action_;
    self.loop_.after(self.times_.busy_after, [weak = self.weak_from_this(), action] {
      const auto session = weak.lock();
      if (session && session->busy_ && session->action_ == action) session->tell_busy();
    });
  });
}

void Session::action_ended() {
  post([](Session& self) { self.tell_no_longer_busy(); });
}

void Session::progress(std::string text, std::uint64_t done, std::uint64_t total) {
  post([text = std::move(text), done, total](Session& self) {
    if (!self.busy_) return;
    self.busy_->text = text;
    self.busy_->done = done;
    self.busy_->total = total;
    if (self.busy_->is_long) self.tell_busy();
  });
}

void Session::language_is(std::string language) {
  post([language = std::move(language)](Session& self) { self.callbacks_.language_is(language); });
}

void Session::tell_busy() {
  busy_->is_long = true;
  if (channel_ && greeted_) channel_->send(busy_message(true, busy_->text, busy_->done, busy_->total));
}

void Session::tell_no_longer_busy() {
  if (busy_ && busy_->is_long && channel_ && greeted_) channel_->send(busy_message(false, {}, 0, 0));
  busy_.reset();
}

}  // namespace zrl::web
