#include "host/web/tab.h"

#include "host/web/outgoing.h"
#include "host/web/responses.h"

namespace zrl::web {

namespace {

constexpr int close_replaced = 4001;
constexpr int close_over = 4002;
constexpr int close_going_away = 1001;
constexpr int close_violated = 1008;

}  // namespace

// Knows which of the tab's WebSockets it listens to: the end of an old one may come after the
// beginning of the next.
class Tab::Listener : public ChannelListener {
 public:
  explicit Listener(std::shared_ptr<Tab> tab) : tab_(std::move(tab)) {}

  void on_open(std::shared_ptr<Channel> channel) override {
    connection_ = tab_->connected(std::move(channel));
  }
  bool on_text(std::string text) override { return tab_->received(connection_, std::move(text)); }
  void on_close(bool left) override { tab_->disconnected(connection_, left); }

 private:
  std::shared_ptr<Tab> tab_;
  std::uint64_t connection_ = 0;
};

Tab::Tab(IoLoop& loop, const ConsoleSettings& settings, const SessionTimes& times, TerminalPlaces& terminals,
         TabIdentity identity, Callbacks callbacks)
    : loop_(loop),
      settings_(settings),
      times_(times),
      terminals_(terminals),
      identity_(std::move(identity)),
      callbacks_(std::move(callbacks)),
      inbox_([this] {
        post([](Tab& self) {
          if (self.channel_) self.channel_->resume();
        });
      }) {}

Tab::~Tab() {
  if (!thread_.joinable()) return;
  if (thread_.get_id() == std::this_thread::get_id()) {
    thread_.detach();
  } else {
    thread_.join();
  }
}

std::shared_ptr<ChannelListener> Tab::new_listener() {
  return std::make_shared<Listener>(shared_from_this());
}

void Tab::take_upload(UploadTarget target, std::unique_ptr<UploadedFile> file, Reply reply) {
  if (ended_ || !thread_.joinable()) return reply(error_response(409, "no_form"));
  auto on_loop = [&loop = loop_, reply = std::move(reply)](Response response) {
    loop.post([reply, response = std::move(response)] { reply(response); });
  };
  inbox_.push({Incoming::Kind::upload,
               0,
               {},
               std::make_shared<PendingUpload>(std::move(target), std::move(file), std::move(on_loop))});
}

void Tab::end(Reason reason) {
  if (channel_) channel_->close(reason == Reason::stopping ? close_going_away : close_over);
  channel_.reset();
  ended_ = true;
  if (thread_.joinable()) {
    inbox_.push({reason == Reason::stopping ? Incoming::Kind::stopping : Incoming::Kind::ended, 0, {}});
  } else {
    callbacks_.finished(*this);
  }
}

std::uint64_t Tab::connected(std::shared_ptr<Channel> channel) {
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

bool Tab::received(std::uint64_t connection, std::string text) {
  if (ended_ || connection != connection_) return true;
  return inbox_.push({Incoming::Kind::message, connection, std::move(text)});
}

void Tab::disconnected(std::uint64_t connection, bool left) {
  if (ended_ || connection != connection_) return;
  channel_.reset();
  lost_ = Clock::now();
  left_ = left;
}

void Tab::start_thread() {
  thread_ = std::thread([self = shared_from_this()] { self->run_console(); });
}

void Tab::run_console() {
  bool failed = false;
  try {
    SessionConsole(settings_, identity_, terminals_, inbox_, offered_, *this).run();
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

void Tab::post(std::function<void(Tab&)> task) {
  loop_.post([self = shared_from_this(), task = std::move(task)] { task(*self); });
}

void Tab::send(std::uint64_t connection, std::string message) {
  post([connection, text = std::move(message)](Tab& self) mutable {
    if (!self.channel_ || self.connection_ != connection) return;
    self.channel_->send(std::move(text));
    if (!self.greeted_) {
      self.greeted_ = true;
      if (self.busy_ && self.busy_->is_long) self.tell_busy();
    }
  });
}

void Tab::violated(std::uint64_t connection) {
  post([connection](Tab& self) {
    if (self.channel_ && self.connection_ == connection) self.channel_->close(close_violated);
  });
}

void Tab::person_acted() {
  post([](Tab& self) { self.callbacks_.person_acted(); });
}

void Tab::action_began() {
  post([](Tab& self) {
    self.busy_ = Busy();
    const std::uint64_t action = ++self.action_;
    self.loop_.after(self.times_.busy_after, [weak = self.weak_from_this(), action] {
      const auto tab = weak.lock();
      if (tab && tab->busy_ && tab->action_ == action) tab->tell_busy();
    });
  });
}

void Tab::action_ended() {
  post([](Tab& self) { self.tell_no_longer_busy(); });
}

void Tab::progress(std::string text, std::uint64_t done, std::uint64_t total) {
  post([text = std::move(text), done, total](Tab& self) {
    if (!self.busy_) return;
    self.busy_->text = text;
    self.busy_->done = done;
    self.busy_->total = total;
    if (self.busy_->is_long) self.tell_busy();
  });
}

void Tab::language_is(std::string language) {
  post([language = std::move(language)](Tab& self) { self.callbacks_.language_is(language); });
}

void Tab::tell_busy() {
  busy_->is_long = true;
  if (channel_ && greeted_) channel_->send(busy_message(true, busy_->text, busy_->done, busy_->total));
}

void Tab::tell_no_longer_busy() {
  if (busy_ && busy_->is_long && channel_ && greeted_) channel_->send(busy_message(false, {}, 0, 0));
  busy_.reset();
}

}  // namespace zrl::web
