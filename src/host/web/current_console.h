#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>

#include "catalogue/catalogue.h"
#include "core/console.h"
#include "core/contracts/host.h"
#include "host/web/entry_finder.h"
#include "host/web/reporter.h"
#include "host/web/session_output.h"

namespace zrl::web {

// What the consoles of all sessions have in common. Used by several threads at once.
struct ConsoleSettings {
  std::filesystem::path folder;
  std::span<const PageEntry> pages;
  std::function<void(Console&)> register_components;
  std::shared_ptr<AuditFile> audit;
  // Whether dialogs stay open beside their page while its handler goes on.
  bool modeless_dialogs = false;
  // Of all consoles.
  std::shared_ptr<ListPool> lists = std::make_shared<ListPool>();
};

// Owns the console of a tab and what is made from it: the search for entries, and the captions of all pages
// in its language. Another language takes a new console, because a console keeps the one it began with. All
// calls are made on the session's thread; references to what it owns hold until start(), renew() or end().
class CurrentConsole {
 public:
  // All must outlive it. `host` is that of each console.
  CurrentConsole(const ConsoleSettings& settings, Host& host, Reporter& reporter, SessionOutput& output)
      : settings_(settings), host_(host), reporter_(reporter), output_(output) {}

  // Makes the console, which the reporter watches from then on. Raises std::exception if it cannot be made.
  void start();
  // There is none any more. Its page must be gone by then.
  void end();

  // Whether another language has been chosen since the console was made.
  bool speaks_otherwise();
  // Makes a new console if speaks_otherwise(); false if nothing was done. No form of the old one may be left.
  bool renew();

  Console& operator*() const { return *console_; }
  Console* operator->() const { return console_.get(); }
  EntryFinder& entries() { return *entries_; }
  // The message `captions` (docs/protocol.md), made when it is first asked for.
  const std::string& captions();

 private:
  const ConsoleSettings& settings_;
  Host& host_;
  Reporter& reporter_;
  SessionOutput& output_;

  std::unique_ptr<Console> console_;
  std::unique_ptr<EntryFinder> entries_;
  std::string language_at_start_;
  std::string captions_;
};

}  // namespace zrl::web
