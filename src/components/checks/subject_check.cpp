#include "components/checks/checks.h"
#include "components/checks/keyword_lists.h"
#include "components/checks/keyword_search.h"
#include "components/checks/subject_field.h"
#include "core/text/encoded_words.h"
#include "core/text/reply_texts.h"
#include "core/text/utf8.h"

namespace zrl::checks {

namespace {

constexpr std::size_t longest_subject = 110;  // characters
// A smaller number in the option "subjectspace" switches its rule off.
constexpr int least_blanks = 3;

class SubjectCheck : public CheckPlugin {
 public:
  explicit SubjectCheck(ConsoleServices& console) : console_(console) {}

  int info() override { return 1; }

  bool initmodule(const MessageContext&) override {
    answer_.clear();
    KeywordLists lists(console_);
    keywords_ = lists.entries("swords");
    white_words_ = lists.number("enablesubjectwhite") != 0 ? lists.entries("subjectwhite") : StringList();
    refuses_long_ = lists.number("checklongsubject") != 0;
    refuses_empty_ = lists.number("checkshortsubject") != 0;
    blanks_ = lists.number("subjectspace");
    return true;
  }

  void send(std::string_view, std::string_view, std::string_view text) override {
    answer_.clear();
    // Keywords may match what people see, or its encoded form.
    const std::string raw = subject_of(text);
    const std::string subject = decode_encoded_words(raw);
    if (!find(white_words_, subject, raw).empty()) return;
    const std::string found = find(keywords_, subject, raw);
    if (!found.empty()) {
      answer_.append(replies::subject_not_allowed).append(": ").append(found);
    } else {
      answer_ = broken_rule(subject);
    }
  }

  std::string send() const override { return answer_; }

 private:
  std::string find(const StringList& entries, const std::string& subject, const std::string& raw) const {
    if (entries.empty()) return {};
    std::string found = KeywordSearch(subject, console_).find(entries);
    if (found.empty() && raw != subject) found = KeywordSearch(raw, console_).find(entries);
    return found;
  }

  std::string_view broken_rule(std::string_view subject) const {
    if (refuses_long_ && character_count(subject) > longest_subject) return replies::subject_too_long;
    if (refuses_empty_ && subject.empty()) return replies::subject_empty;
    const bool counts_blanks = blanks_ >= least_blanks;
    if (counts_blanks && longest_run_of_blanks(subject) >= static_cast<std::size_t>(blanks_)) {
      return replies::subject_many_spaces;
    }
    return {};
  }

  ConsoleServices& console_;
  StringList keywords_;
  StringList white_words_;
  bool refuses_long_ = false;
  bool refuses_empty_ = false;
  int blanks_ = 0;
  std::string answer_;
};

}  // namespace

std::shared_ptr<CheckPlugin> make_subject_check(ConsoleServices& console) {
  return std::make_shared<SubjectCheck>(console);
}

}  // namespace zrl::checks
