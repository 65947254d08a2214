#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "core/acts.h"
#include "core/contracts/database.h"
#include "core/contracts/host.h"

namespace zrl {

class Console;

// What a user's action writes: one transaction from its first write until the action ends or anything waits
// (a look-up, events, a box, a dialog, a file, a program, another connection). So statements that belong
// together happen together, and another process is never kept out while this one waits.
//
// A statement that fails by itself is skipped, and the others stay. After an EngineFailure, or if the commit
// fails, nothing of the transaction is left: its entries in the activity record are turned into failures, and
// its further writes fail at once. The next write after the commit begins anew.
//
// Outside an action each write is a transaction of its own. Owned by the console; one thread.
class ActionWrites {
 public:
  explicit ActionWrites(Console& console) : console_(console) {}
  ActionWrites(const ActionWrites&) = delete;
  ActionWrites& operator=(const ActionWrites&) = delete;

  // An action's bounds, in pairs. Events that code raises nest in the action that is running. Those that run
  // while it waits are actions of their own, and their end commits what they wrote. end() is true if it was
  // the outermost.
  void begin() { ++depth_; }
  bool end();
  // Whether no action runs, or those that run wait.
  bool rests() const { return depth_ == waiting_depth_; }

  // Makes what is written over the connection next part of the transaction; called inside the step, before
  // its statement. A transaction on another connection is committed first, since that connection may be to
  // the same file. Raises what beginning raises.
  void join(const ConnectionHandle& conn);
  // The step that joined has worked: this is its entry in the activity record.
  void worked(std::uint64_t entry);
  // Called after the commit if the transaction was dropped. `owner` identifies the act for forget(), which
  // its owner calls before it is destroyed. Nothing is kept outside a transaction.
  void if_dropped(const void* owner, std::function<void()> act);
  void forget(const void* owner);

  // The action has set this reload flag, a full path of the registry. As the proxy may read the lists and
  // clear the flag before the commit, a commit sets it once more if it is no longer set; that is recorded
  // only if it fails.
  void flag_raised(std::string path);

  // Commits, if there is anything to; false if it was dropped instead. Never raises.
  bool commit();

  // Commits, and lives as long as the action waits.
  class Wait {
   public:
    explicit Wait(ActionWrites& writes);
    Wait(const Wait&) = delete;
    Wait& operator=(const Wait&) = delete;
    ~Wait();

   private:
    ActionWrites& writes_;
    int depth_before_;
    Acts::State act_;
  };

 private:
  struct Act {
    const void* owner;
    std::function<void()> run;
  };

  void raise_flags_again();

  Console& console_;
  int depth_ = 0;
  int waiting_depth_ = 0;  // of the actions that wait: those above it are running
  ConnectionHandle open_;
  std::vector<std::uint64_t> entries_;
  std::vector<Act> acts_;
  std::vector<std::string> flags_;
};

// The console's host as pages and components see it: what was written is committed before each call, since
// the host may run events or keep the caller waiting.
class CommittingHost final : public Host {
 public:
  // Both must outlive it.
  CommittingHost(Host& host, ActionWrites& writes) : host_(host), writes_(writes) {}

  BoxReply message_box(const MessageBox& box) override;
  bool allows_modeless() const override { return host_.allows_modeless(); }
  void show(Form& dialog) override;
  void process_events() override;
  void wait(std::chrono::milliseconds time) override;
  void start_program(const ProgramStart& program) override;
  void offer_file(const std::filesystem::path& path) override;
  void open_page(std::string_view page, std::string_view query) override { host_.open_page(page, query); }
  bool guards_newer_values() const override { return host_.guards_newer_values(); }
  void show_progress(const Progress& progress) override;

 private:
  Host& host_;
  ActionWrites& writes_;
};

}  // namespace zrl
