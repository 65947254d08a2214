#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/action_writes.h"
#include "core/activity.h"
#include "core/acts.h"
#include "core/contracts/console_services.h"
#include "core/contracts/database.h"
#include "core/contracts/name_lookup.h"
#include "core/html_text.h"
#include "core/localisation.h"
#include "core/pattern_matcher.h"
#include "core/settings.h"
#include "core/text/list_pool.h"

namespace zrl {

class Form;

// The name that texts give the product, whatever the product key.
inline constexpr std::string_view product_name = "Mirvan";

// The result of a step. A page that only needs to know whether it worked takes it as a bool.
struct Outcome {
  bool worked = true;
  int number = 0;       // of the error; 0 if it has none
  std::string problem;  // why it did not work: UTF-8, for people

  operator bool() const { return worked; }  // NOLINT(google-explicit-constructor)
};

// Everything that the pages of one console share: settings, language, components, the activity record, open
// dialogs. One thread uses it, that on which its host runs events. Tests and hosts make as many consoles as
// they like; nothing is global. Those of one folder share its database and registry, as separate processes
// would.
//
// The console is also what its components get, see ConsoleServices. It must outlive its forms, its components
// and all that they keep.
class Console final : public ConsoleServices {
 public:
  using Clock = std::function<std::chrono::system_clock::time_point()>;

  // `folder` is the console's own folder, which is neither made nor checked here; a relative one is made
  // absolute, because paths of files are built on it and read again later. The host must outlive the console;
  // it registers the components before it makes a page. `clock` is replaced by tests.
  Console(const std::filesystem::path& folder, Host& host, Clock clock = std::chrono::system_clock::now);
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  const std::filesystem::path& folder() const override { return folder_; }
  // What was written is committed before each call, see ActionWrites.
  Host& host() { return committing_host_; }
  ComponentRegistry& components() override { return components_; }
  Settings& settings() { return settings_; }
  Localisation& localisation() { return localisation_; }
  // Raises error 429 if the component is missing. Pages use the steps of Page instead, which record failures.
  // As a look-up takes long, what was written is committed.
  NameLookup& names() override;
  HtmlText& html_text() { return html_text_; }
  ActivityRecord& activity() { return activity_; }
  // The transaction of the user's action.
  ActionWrites& writes() { return writes_; }
  // What the act that runs says of itself.
  Acts& acts() { return acts_; }
  std::chrono::system_clock::time_point now() const { return clock_(); }
  // The clock in the local time of the machine, as fourteen digits: "20051104173005" is 17:30:05 on 4
  // November 2005. Empty if the time cannot be converted.
  std::string time_stamp() const;

  // The rest of ConsoleServices, whose contract is stated there.
  std::string setting(std::string_view name) override;
  std::string regex_match(std::string_view entry, std::string_view text) override;
  void wait(std::chrono::milliseconds time) override { host().wait(time); }
  void process_events() override { host().process_events(); }
  void show_progress(const Progress& progress) override { host().show_progress(progress); }
  void record_failure(std::string_view step, std::string_view problem) override {
    record_failure(ActivityRecord::Kind::component, step, problem, Step::read);
  }

  enum class Step { read, write };

  // Records a step that failed before anything could be tried, without the secrets of connection strings.
  void record_failure(ActivityRecord::Kind kind, std::string_view text, std::string_view problem, Step step);

  // Runs one step. It never throws what `action` raises: the result says whether the step worked. A step that
  // failed is recorded with its error, one that worked only if it is a `write`. `text` (UTF-8) names the step
  // in the record; `public_text` is the same without secrets, needed only if `text` holds one. What the
  // action did before it raised is not undone. The error is recorded without the secrets of connection
  // strings. A step whose failure is `expected` is prepared for it; an EngineFailure never is.
  enum class Failure { unexpected, expected };
  Outcome attempt(ActivityRecord::Kind kind, std::string_view text, Step step,
                  const std::function<void()>& action, std::string_view public_text = {},
                  Failure failure = Failure::unexpected);
  // The same for a write over the connection, which becomes part of the action's transaction (see
  // ActionWrites) and is noted for wrote_to(). Without a connection only the step is recorded.
  Outcome attempt_write(const ConnectionHandle& conn, ActivityRecord::Kind kind, std::string_view text,
                        const std::function<void()>& action, std::string_view public_text = {},
                        Failure failure = Failure::unexpected);

  // Records the exception that is being handled as a failed read; to be called in a catch clause alone.
  // `where` is the name of a form or control.
  void record_escaped(std::string_view where);

  // Mark the user's actions, in pairs; Form::run() calls them. They nest when a handler lets pending events
  // run. The end of each commits what it wrote (see ActionWrites). When the outermost one ends, the
  // connections that were written to meanwhile are settled, which makes the writes durable
  // (Connection::settle()); a failure is recorded.
  void begin_action();
  void end_action();
  // Notes a connection for that. It is not kept alive: one that is dropped before the action ends is left
  // out.
  void wrote_to(const ConnectionHandle& conn);

  // The user is to see another page, see Host::open_page().
  void open(std::string_view page, std::string_view query = {}) { host().open_page(page, query); }

  // Long lists of this console's controls share their memory with equal ones of other consoles that have the
  // same pool. Without a pool, which is how a console begins, nothing is shared.
  void share_lists(std::shared_ptr<ListPool> pool) { list_pool_ = std::move(pool); }
  StringList shared(StringList list) {
    return list_pool_ ? list_pool_->shared(std::move(list)) : std::move(list);
  }

  // Opens the dialog, shows it, and keeps it alive until it is closed. Whether this returns at once or when
  // the dialog has been closed is up to the host, see Host::allows_modeless().
  void show(const std::shared_ptr<Form>& dialog);
  // The dialogs that are open, in the order of their opening. The call drops those that have been closed,
  // which may destroy them. The reference is valid as long as the console; its content changes with show()
  // and with this call.
  const std::vector<std::shared_ptr<Form>>& dialogs();

 private:
  std::int64_t seconds() const;
  void settle();

  std::filesystem::path folder_;
  Clock clock_;
  ActivityRecord activity_;
  Acts acts_;
  ActionWrites writes_;
  CommittingHost committing_host_;
  ComponentRegistry components_;
  Settings settings_;
  Localisation localisation_;
  std::shared_ptr<NameLookup> names_;
  PatternMatcher pattern_matcher_;
  HtmlText html_text_;
  std::shared_ptr<ListPool> list_pool_;
  std::vector<std::weak_ptr<Connection>> unsettled_;
  std::vector<std::shared_ptr<Form>> dialogs_;
};

}  // namespace zrl
