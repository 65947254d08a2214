#include "pages/traffic/verdict.h"

#include <algorithm>

#include "core/text/filled.h"
#include "core/text/utf8.h"

namespace zrl {

namespace {

using Word = Verdict::Word;

// In a sentence; the table shows entries as they are.
constexpr std::size_t longest_quotation = 120;

std::string in_quotes(std::string_view text) {
  std::string result = "\"" + beginning_of(text, longest_quotation);
  return result += text.size() > longest_quotation ? "...\"" : "\"";
}

// The pattern for what a match says of the subject "%2"; the entry is said already.
std::string_view relation(Match match) {
  switch (match) {
    case Match::any_address:
      return "%1, which stands for all addresses there";
    case Match::parent_domain:
      return "%1, a domain above %2";
    case Match::network:
      return "%1, which holds %2";
    case Match::word:
      return "%1, which occurs in %2";
    case Match::expression:
      return "%1, which matches in %2";
    case Match::extension:
      return "%1, which %2 ends in";
    case Match::same:
      break;
  }
  return "%1";
}

class VerdictText {
 public:
  VerdictText(Console& console, const Subject& subject, const ListFindings& findings)
      : console_(console), subject_(subject), findings_(findings) {}

  Verdict verdict() {
    if (findings_.entries.empty()) {
      return {Word::not_listed, with_doubt(filled(translate("Not listed: no entry of any list touches %1."),
                                                  {in_quotes(subject_.text)}))};
    }
    const ListFinding* rejects = first([](const ListFinding& one) { return decides(one, Effect::rejects); });
    const ListFinding* allows = first([](const ListFinding& one) { return decides(one, Effect::allows); });
    const ListFinding* exempts = first([](const ListFinding& one) { return decides(one, Effect::exempts); });
    if (white_subject_comes_first(rejects, allows)) rejects = nullptr;
    if (rejects != nullptr && allows == nullptr && exempts == nullptr)
      return {Word::rejected, told("Rejected: %1.", rejects)};
    if (allows != nullptr && rejects == nullptr) return {Word::allowed, told("Allowed: %1.", allows)};
    if (rejects != nullptr) {
      const ListFinding* against = allows != nullptr ? allows : exempts;
      const std::string both =
          filled(translate("Listed: %1, but %2. Which of them counts is the proxy's own rule."),
                 {clause(*rejects), clause(*against)});
      return {Word::listed, with_doubt(both)};
    }
    if (const ListFinding* on = first([](const ListFinding& one) { return one.switched_off == nullptr; }))
      return {Word::listed, told("Listed: %1.", on)};
    const ListFinding* of_its_kind = first([](const ListFinding&) { return true; });
    if (of_its_kind == nullptr) {
      return {Word::not_listed, with_doubt(filled(translate("No list of its kind has it, but %1."),
                                                  {clause(findings_.entries.front())}))};
    }
    const ListFinding& off = *of_its_kind;
    return {Word::not_in_effect,
            with_doubt(filled(translate("Listed, but not in effect: %1, and %2 is switched off."),
                              {clause(off), in_quotes(translate(off.switched_off->caption))}))};
  }

 private:
  static bool decides(const ListFinding& finding, Effect effect) {
    return finding.list->effect == effect && finding.decides();
  }

  // The subject check is known to ask its white list before its keywords.
  static bool white_subject_comes_first(const ListFinding* rejects, const ListFinding* allows) {
    return rejects != nullptr && allows != nullptr && allows->list->table.name == list::white_subjects.name &&
           rejects->list->table.name == list::subject_keywords.name;
  }

  // A keyword that occurs in the name of a domain, say, decides nothing about the domain's mail.
  bool concerns(const ListFinding& finding) const {
    const EntryKind entries = finding.list->entries;
    switch (subject_.kind) {
      case Subject::Kind::address:
      case Subject::Kind::network:
        return entries == EntryKind::address || entries == EntryKind::network;
      case Subject::Kind::mail:
        return entries == EntryKind::mail_address || entries == EntryKind::domain;
      case Subject::Kind::domain:
        return entries == EntryKind::domain;
      case Subject::Kind::nothing:
      case Subject::Kind::text:
        break;
    }
    return entries == EntryKind::word;
  }

  template <typename Condition>
  const ListFinding* first(const Condition& condition) const {
    const auto found = std::ranges::find_if(
        findings_.entries, [&](const ListFinding& one) { return concerns(one) && condition(one); });
    return found == findings_.entries.end() ? nullptr : &*found;
  }

  std::string told(std::string_view pattern, const ListFinding* finding) {
    std::string sentence = filled(translate(pattern), {clause(*finding)});
    const std::size_t others = findings_.entries.size() + findings_.left_out - 1;
    if (others == 1) sentence += " " + translate("One more entry touches it.");
    if (others > 1)
      sentence += " " + filled(translate("%1 more entries touch it."), {std::to_string(others)});
    return with_doubt(std::move(sentence));
  }

  std::string clause(const ListFinding& finding) {
    const std::string entry =
        filled(translate(relation(finding.match)), {in_quotes(finding.entry), in_quotes(subject_.text)});
    const bool is_subject = finding.match == Match::same;
    std::string text =
        filled(translate(finding.list->phrase), {is_subject ? in_quotes(finding.entry) : entry + ","});
    if (!finding.expires.empty()) text += " " + filled(translate("until %1"), {finding.expires});
    if (!finding.comment.empty()) text += " (" + finding.comment + ")";
    return text;
  }

  std::string with_doubt(std::string sentence) {
    if (!findings_.complete) sentence += " " + translate("Not all lists could be read to the end.");
    return sentence;
  }

  std::string translate(std::string_view text) { return console_.localisation().translate(text); }

  Console& console_;
  const Subject& subject_;
  const ListFindings& findings_;
};

}  // namespace

Label::Tone Verdict::tone() const {
  switch (word) {
    case Word::rejected:
      return Label::Tone::bad;
    case Word::allowed:
      return Label::Tone::good;
    case Word::listed:
    case Word::not_in_effect:
      return Label::Tone::waiting;
    case Word::not_listed:
      break;
  }
  return Label::Tone::plain;
}

Verdict verdict_on(Console& console, const Subject& subject, const ListFindings& findings) {
  return VerdictText(console, subject, findings).verdict();
}

std::string_view name_of(Match match) {
  switch (match) {
    case Match::same:
      return "the same";
    case Match::any_address:
      return "all addresses there";
    case Match::parent_domain:
      return "domain above it";
    case Match::network:
      return "network around it";
    case Match::word:
      return "occurs in it";
    case Match::expression:
      return "matches in it";
    case Match::extension:
      return "its ending";
  }
  return {};
}

}  // namespace zrl
