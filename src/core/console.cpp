#include "core/console.h"

#include <algorithm>
#include <exception>

#include "core/contracts/name_lookup.h"
#include "core/form.h"
#include "core/text/error.h"
#include "core/text/secrets.h"
#include "core/text/time_stamp.h"

namespace zrl {

namespace {

// The exception that is being handled.
Outcome current_error() {
  try {
    throw;
  } catch (const Error& error) {
    return {false, error.number(), without_secrets(error.what())};
  } catch (const std::exception& error) {
    return {false, 0, without_secrets(error.what())};
  } catch (...) {
    return {false, 0, "unknown error"};
  }
}

bool is_engine_failure() {
  try {
    throw;
  } catch (const EngineFailure&) {
    return true;
  } catch (...) {
    return false;
  }
}

// The empty path stays empty: a console that uses no files.
std::filesystem::path absolute_folder(const std::filesystem::path& folder) {
  return folder.empty() ? folder : std::filesystem::absolute(folder);
}

}  // namespace

Console::Console(const std::filesystem::path& folder, Host& host, Clock clock)
    : folder_(absolute_folder(folder)),
      clock_(std::move(clock)),
      acts_(*this),
      writes_(*this),
      committing_host_(host, writes_),
      settings_(*this),
      localisation_(*this),
      pattern_matcher_(*this),
      html_text_(*this) {}

NameLookup& Console::names() {
  writes_.commit();
  if (!names_) names_ = components_.create<NameLookup>();
  return *names_;
}

std::string Console::time_stamp() const {
  return time_digits(now());
}

std::string Console::setting(std::string_view name) {
  return settings_.regread(settings_.path_of(name));
}

std::string Console::regex_match(std::string_view entry, std::string_view text) {
  return pattern_matcher_.regex_match(entry, text);
}

void Console::record_failure(ActivityRecord::Kind kind, std::string_view text, std::string_view problem,
                             Step step) {
  activity_.failed(kind, text, without_secrets(problem), seconds(), step == Step::write);
}

Outcome Console::attempt(ActivityRecord::Kind kind, std::string_view text, Step step,
                         const std::function<void()>& action, std::string_view public_text, Failure failure) {
  try {
    action();
  } catch (...) {
    const bool expected = failure == Failure::expected && !is_engine_failure();
    const Outcome error = current_error();
    activity_.failed(kind, text, error.problem, seconds(), step == Step::write, public_text, expected);
    return error;
  }
  if (step == Step::write) activity_.succeeded(kind, text, seconds(), public_text);
  return {};
}

Outcome Console::attempt_write(const ConnectionHandle& conn, ActivityRecord::Kind kind, std::string_view text,
                               const std::function<void()>& action, std::string_view public_text,
                               Failure failure) {
  if (!conn) return attempt(kind, text, Step::write, action, public_text, failure);
  wrote_to(conn);
  const Outcome outcome = attempt(
      kind, text, Step::write,
      [&] {
        writes_.join(conn);
        action();
      },
      public_text, failure);
  if (outcome) writes_.worked(activity_.total() - 1);
  return outcome;
}

void Console::record_escaped(std::string_view where) {
  record_failure(where, current_error().problem);
}

void Console::begin_action() {
  if (writes_.rests()) acts_.begin();
  writes_.begin();
}

void Console::end_action() {
  if (writes_.end()) settle();
  if (writes_.rests()) acts_.end();
}

void Console::settle() {
  const auto unsettled = std::move(unsettled_);
  unsettled_.clear();
  for (const std::weak_ptr<Connection>& held : unsettled) {
    const ConnectionHandle conn = held.lock();
    if (!conn) continue;
    attempt(ActivityRecord::Kind::component, "settle", Step::read, [&] { conn->settle(); });
  }
}

void Console::wrote_to(const ConnectionHandle& conn) {
  if (!unsettled_.empty() && unsettled_.back().lock() == conn) return;
  unsettled_.push_back(conn);
}

void Console::show(const std::shared_ptr<Form>& dialog) {
  dialog->set_open(true);
  dialogs_.push_back(dialog);
  host().show(*dialog);
}

const std::vector<std::shared_ptr<Form>>& Console::dialogs() {
  std::erase_if(dialogs_, [](const std::shared_ptr<Form>& dialog) { return !dialog->is_open(); });
  return dialogs_;
}

std::int64_t Console::seconds() const {
  return std::chrono::duration_cast<std::chrono::seconds>(clock_().time_since_epoch()).count();
}

}  // namespace zrl
