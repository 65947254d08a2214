#include "core/acts.h"

#include <algorithm>
#include <array>
#include <utility>

#include "core/console.h"
#include "core/text/filled.h"
#include "core/text/grouped_number.h"
#include "core/text/printable.h"
#include "core/text/utf8.h"

namespace zrl {

namespace {

constexpr std::size_t longest_value = 160;
constexpr std::size_t longest_reason = 300;

std::string bounded(std::string_view text, std::size_t limit) {
  const std::string_view part = cut_between_characters(text, limit);
  return printable(part) + (part.size() < text.size() ? "\u2026" : "");
}

bool is_unexpected(const ActivityRecord::Entry& entry) {
  return !entry.ok && !entry.expected;
}

}  // namespace

std::string with_values(std::string_view text, std::span<const std::string_view> values) {
  std::vector<std::string> shown;
  shown.reserve(values.size());
  for (const std::string_view value : values) shown.push_back(bounded(value, longest_value));
  return filled(text, std::vector<std::string_view>(shown.begin(), shown.end()));
}

void Acts::begin() {
  const ActivityRecord& record = console_.activity();
  state_ = {++last_, record.total(), record.failures(), false, {}};
  mark();
}

void Acts::end() {
  const State act = std::exchange(state_, {});
  ActivityRecord& record = console_.activity();
  state_.number = act.number;  // for the reasons
  std::uint64_t from = state_.first = std::max(act.first, record.first());
  std::uint64_t untold = from;  // from this entry on, failures have not been told
  std::vector<ActivityRecord::Said> sentences;
  for (const Pending& pending : act.said) {
    const std::uint64_t until = std::min(pending.until, record.total());
    const auto reason =
        pending.failed.empty() ? std::nullopt : reason_of_write(from, until, pending.worked.value_or(false));
    if (reason || pending.failed.empty()) untold = until;
    from = std::max(from, until);
    sentences.push_back(reason ? ActivityRecord::Said{with_reason(pending.failed, *reason), SentenceTone::bad}
                               : ActivityRecord::Said{pending.done, pending.tone});
  }
  if (!sentences.empty() && record.failures() > act.failures) {
    ActivityRecord::Said& last = sentences.back();
    if (const auto reason = first_reason(untold); reason && last.tone != SentenceTone::bad) {
      last.text += ". " + with_reason(console_.localisation().translate("A step of it failed"), *reason);
      last.tone = SentenceTone::bad;
    }
  }
  for (ActivityRecord::Said& sentence : sentences) record.say(std::move(sentence.text), sentence.tone);
  state_ = {};
  mark();
}

void Acts::say(const Sentence& sentence, SentenceValues values, SentenceTone tone) {
  add(sentence.done, sentence.failed, tone, {values.begin(), values.size()});
}

void Acts::say_of(bool worked, const Sentence& sentence, SentenceValues values) {
  add(sentence.done, sentence.failed, SentenceTone::good, {values.begin(), values.size()}, worked);
}

void Acts::say_counted(const Sentence& sentence, std::uint64_t count, SentenceValues values,
                       std::optional<bool> worked) {
  const std::string number = grouped(count, console_.localisation().current_language() == "german");
  std::vector<std::string_view> all{number};
  all.insert(all.end(), values.begin(), values.end());
  const bool single = count == 1 && !sentence.one.empty();
  add(single ? sentence.one : sentence.done, sentence.failed,
      count == 0 ? SentenceTone::neutral : SentenceTone::good, all, worked);
}

void Acts::say(std::string_view text, SentenceTone tone, SentenceValues values, Reason reason) {
  add(text, {}, tone, {values.begin(), values.size()});
  if (reason == Reason::none || state_.said.empty()) return;
  std::string& said = state_.said.back().done;
  if (const auto why = last_reason()) said = with_reason(std::move(said), *why);
}

void Acts::add(std::string_view done, std::string_view failed, SentenceTone tone,
               std::span<const std::string_view> values, std::optional<bool> worked) {
  Localisation& localisation = console_.localisation();
  const auto worded = [&](std::string_view text) {
    return text.empty() ? std::string() : with_values(localisation.translate(text), values);
  };
  if (state_.number == 0) return console_.activity().say(worded(done), tone);
  state_.said.push_back({worded(done), worded(failed), tone, worked, console_.activity().total()});
}

// The proxy reads a list again some time even if it was not told to; that is another matter than the write.
std::optional<std::string> Acts::reason_of_write(std::uint64_t from, std::uint64_t to, bool undone) const {
  const ActivityRecord& record = console_.activity();
  for (std::uint64_t i = from; i < to; ++i) {
    const ActivityRecord::Entry entry = record[i];
    if (entry.act != state_.number || !is_unexpected(entry) || (undone && !entry.undone)) continue;
    if (entry.write && entry.kind != ActivityRecord::Kind::registry) return std::string(entry.error);
  }
  return {};
}

std::optional<std::string> Acts::first_reason(std::uint64_t from) const {
  const ActivityRecord& record = console_.activity();
  for (std::uint64_t i = from; i < record.total(); ++i) {
    const ActivityRecord::Entry entry = record[i];
    if (entry.act == state_.number && is_unexpected(entry)) return std::string(entry.error);
  }
  return {};
}

std::optional<std::string> Acts::last_reason() const {
  const ActivityRecord& record = console_.activity();
  for (std::uint64_t i = record.total(); i > std::max(state_.first, record.first()); --i) {
    const ActivityRecord::Entry entry = record[i - 1];
    if (entry.act == state_.number && is_unexpected(entry)) return std::string(entry.error);
  }
  return {};
}

std::string Acts::with_reason(std::string text, std::string_view reason) const {
  return text.append(": ").append(bounded(console_.localisation().translate(reason), longest_reason));
}

void Acts::mark() {
  console_.activity().set_act(state_.number, state_.routine);
}

Acts::State Acts::suspend() {
  State held = std::exchange(state_, {});
  mark();
  return held;
}

void Acts::resume(State state) {
  state_ = std::move(state);
  mark();
}

Acts::Routine::Routine(Acts& acts) : acts_(acts), before_(std::exchange(acts.state_.routine, true)) {
  acts_.mark();
}

Acts::Routine::~Routine() {
  acts_.state_.routine = before_;
  acts_.mark();
}

}  // namespace zrl
