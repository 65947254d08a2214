#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/activity.h"
#include "core/contracts/console_services.h"
#include "core/contracts/database.h"
#include "core/contracts/name_lookup.h"
#include "core/html_text.h"
#include "core/localisation.h"
#include "core/pattern_matcher.h"
#include "core/settings.h"

namespace zrl {

class Form;

// The name that texts give the product, whatever the product key.
inline constexpr std::string_view product_name = "Mirvan";

// What came of a step.
struct Outcome {
  bool worked = true;
  int number = 0;       // of the error; 0 if it has none
  std::string problem;  // why it did not work: UTF-8, for people

  operator bool() const { return worked; }  // NOLINT(google-explicit-constructor)
};

// The process-wide state of one console: everything that pages share. One thread uses it. Tests
// and hosts make as many consoles as they like; nothing is global.
class Console final : public ConsoleServices {
 public:
  using Clock = std::function<std::chrono::system_clock::time_point()>;

  // `folder` is the console's own folder. The host must outlive the console.
  Console(std::filesystem::path folder, Host& host, Clock clock = std::chrono::system_clock::now);
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  const std::filesystem::path& folder() const override { return folder_; }
  Host& host() { return host_; }
  ComponentRegistry& components() override { return components_; }
  Settings& settings() { return settings_; }
  Localisation& localisation() { return localisation_; }
  // Pages use the steps of Page, which record what fails.
  NameLookup& names() override;
  HtmlText& html_text() { return html_text_; }
  ActivityRecord& activity() { return activity_; }
  std::chrono::system_clock::time_point now() const { return clock_(); }
  // The clock in local time, as fourteen digits: "20051104173005" is 17:30:05 on 4 November 2005.
  std::string time_stamp() const;

  // The rest of what components may ask.
  std::string setting(std::string_view name) override;
  std::string regex_match(std::string_view entry, std::string_view text) override;
  void wait(std::chrono::milliseconds time) override { host_.wait(time); }
  void process_events() override { host_.process_events(); }
  void show_progress(const Progress& progress) override { host_.show_progress(progress); }
  void record_failure(std::string_view step, std::string_view problem) override;

  // Runs one step. It never throws and tells whether the step worked. A step that failed is
  // recorded with its error; one that worked is recorded if it is a `write`. `public_text` is given
  // where the text holds a secret.
  enum class Step { read, write };
  Outcome attempt(ActivityRecord::Kind kind, std::string_view text, Step step,
                  const std::function<void()>& action, std::string_view public_text = {});

  // Records what escaped from a handler; called while the exception is being handled.
  void record_escaped(std::string_view where);

  // The user's actions nest when a handler lets pending events run. When the outermost one ends,
  // the connections that it wrote to are settled.
  void begin_action() { ++action_depth_; }
  void end_action();
  void wrote_to(const ConnectionHandle& conn);

  // Opens the dialog, shows it, and keeps it alive until it is closed.
  void show(const std::shared_ptr<Form>& dialog);
  // The dialogs that are open, in the order of their opening. Closed ones are dropped.
  const std::vector<std::shared_ptr<Form>>& dialogs();

 private:
  std::int64_t seconds() const;

  std::filesystem::path folder_;
  Host& host_;
  Clock clock_;
  ActivityRecord activity_;
  ComponentRegistry components_;
  Settings settings_;
  Localisation localisation_;
  std::shared_ptr<NameLookup> names_;
  PatternMatcher pattern_matcher_;
  HtmlText html_text_;
  std::vector<std::weak_ptr<Connection>> unsettled_;
  std::vector<std::shared_ptr<Form>> dialogs_;
  int action_depth_ = 0;
};

}  // namespace zrl
