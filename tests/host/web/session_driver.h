#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <fstream>
#include <future>
#include <mutex>
#include <string>
#include <thread>

#include "host/composition.h"
#include "host/folder.h"
#include "host/web/browser_end.h"
#include "host/web/session_console.h"
#include "host/web/uploads.h"
#include "support/recording_host.h"
#include "support/temporary_folder.h"

namespace zrl::test {

// A session's console on its thread, in a laid-out folder with the components of the build, and a
// browser that is connected to it without a network between them.
class SessionDriver : public BrowserEnd, private web::SessionOutput {
 public:
  explicit SessionDriver(std::span<const PageEntry> pages, bool modeless = false,
                         web::AuditFile::IfUnwritable if_unaudited = web::AuditFile::IfUnwritable::carry_on)
      : settings_{
            folder_.path(), pages, register_components,
            std::make_shared<web::AuditFile>(audit_file(), if_unaudited, nullptr, web::AuditFile::Limits()),
            modeless} {
    RecordingHost nobody;
    Console console(folder_.path(), nobody);
    register_components(console);
    lay_out_folder(console);
    thread_ = std::thread([this] {
      web::SessionConsole(settings_, {"admin", "tab"}, terminals_, inbox_, offered_, *this).run();
      ended_ = true;
    });
    connect();
  }
  ~SessionDriver() override { end(web::Incoming::Kind::stopping); }

  using BrowserEnd::send;

  // A reload: what comes from then on belongs to a new connection.
  void connect() {
    {
      const std::scoped_lock lock(mutex_);
      ++connection_;
      messages_.clear();
    }
    forms.clear();
    start_numbering_anew();
    inbox_.push({web::Incoming::Kind::connected, connection_, {}});
    receive("hello");
  }

  std::filesystem::path audit_file() const { return folder() / "secrets" / "audit.log"; }

  // What the session's thread gets to see of its end, when it comes to that.
  void announce_end() { inbox_.push({web::Incoming::Kind::ended, 0, {}}); }

  // Returns when the thread has ended.
  void end(web::Incoming::Kind kind) {
    if (!thread_.joinable()) return;
    inbox_.push({kind, 0, {}});
    thread_.join();
  }

  // Opens the page and returns when it is shown.
  void show(std::string_view page) { until_done(open(page)); }

  // Sends a file as a browser would; returns the answer, once it comes.
  web::Response upload(web::UploadTarget target, std::string_view content) {
    std::promise<web::Response> answer;
    auto file = web::UploadFolder(folder()).receive();
    file->write(content);
    web::Reply reply = [&answer](web::Response response) { answer.set_value(std::move(response)); };
    inbox_.push({web::Incoming::Kind::upload,
                 0,
                 {},
                 std::make_shared<web::PendingUpload>(std::move(target), std::move(file), std::move(reply))});
    return answer.get_future().get();
  }
  web::OfferedFiles& offered() { return offered_; }

  // What the handlers of test pages wait for.
  void make_file(std::string_view name) { std::ofstream(folder() / name) << "go"; }
  const std::filesystem::path& folder() const { return folder_.path(); }

  std::atomic<int> violations = 0;
  std::atomic<int> busy_changes = 0;
  std::atomic<int> acts = 0;
  std::atomic<bool> ended_ = false;
  std::string language() {
    const std::scoped_lock lock(mutex_);
    return language_;
  }

 private:
  void send(std::uint64_t connection, std::string message) override {
    const std::scoped_lock lock(mutex_);
    if (connection != connection_) return;
    messages_.push_back(std::move(message));
    arrived_.notify_one();
  }
  void violated(std::uint64_t) override { ++violations; }
  void person_acted() override { ++acts; }
  void action_began() override { ++busy_changes; }
  void action_ended() override { ++busy_changes; }
  void progress(std::string, std::uint64_t, std::uint64_t) override {}
  void language_is(std::string language) override {
    const std::scoped_lock lock(mutex_);
    language_ = std::move(language);
  }

  void transmit(const std::string& text) override {
    inbox_.push({web::Incoming::Kind::message, connection_, text});
  }
  std::optional<std::string> next_text() override {
    std::unique_lock lock(mutex_);
    const bool came = arrived_.wait_for(lock, patience, [this] { return !messages_.empty(); });
    if (!came) throw std::runtime_error("the session is silent");
    std::string text = std::move(messages_.front());
    messages_.pop_front();
    return text;
  }

  TemporaryFolder folder_;
  web::ConsoleSettings settings_;
  web::Inbox inbox_{[] {}};
  web::OfferedFiles offered_;
  web::TerminalPlaces terminals_;
  std::mutex mutex_;
  std::condition_variable arrived_;
  std::deque<std::string> messages_;
  std::string language_;
  std::uint64_t connection_ = 0;
  std::thread thread_;
};

}  // namespace zrl::test
