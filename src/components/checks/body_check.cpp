#include "components/checks/checks.h"
#include "components/checks/keyword_lists.h"
#include "components/checks/keyword_search.h"
#include "core/text/reply_texts.h"

namespace zrl::checks {

namespace {

class BodyCheck : public CheckPlugin {
 public:
  explicit BodyCheck(ConsoleServices& console) : console_(console) {}

  int info() override { return 1; }

  bool initmodule(const MessageContext&) override {
    answer_.clear();
    keywords_ = KeywordLists(console_).entries("words");
    return true;
  }

  void send(std::string_view, std::string_view, std::string_view text) override {
    answer_.clear();
    const std::string found = KeywordSearch(text, console_).find(keywords_);
    if (!found.empty()) answer_.append(replies::body_not_allowed).append(": ").append(found);
  }

  std::string send() const override { return answer_; }

 private:
  ConsoleServices& console_;
  StringList keywords_;
  std::string answer_;
};

}  // namespace

std::shared_ptr<CheckPlugin> make_body_check(ConsoleServices& console) {
  return std::make_shared<BodyCheck>(console);
}

}  // namespace zrl::checks
