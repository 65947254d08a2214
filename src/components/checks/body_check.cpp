#include "components/checks/check_components.h"
#include "components/checks/keyword_lists.h"
#include "components/checks/keyword_search.h"
#include "core/text/reply_texts.h"

namespace zrl {

namespace {

class BodyCheck : public CheckPlugin {
 public:
  explicit BodyCheck(CheckSurroundings surroundings) : surroundings_(std::move(surroundings)) {}

  int info() override { return 1; }

  bool initmodule(const MessageContext&) override {
    answer_.clear();
    keywords_ = KeywordLists(surroundings_).entries("words");
    return true;
  }

  void send(std::string_view, std::string_view, std::string_view text) override {
    answer_.clear();
    const std::string found = KeywordSearch(text, surroundings_.match).find(keywords_);
    if (!found.empty()) answer_.append(replies::body_not_allowed).append(": ").append(found);
  }

  std::string send() const override { return answer_; }

 private:
  CheckSurroundings surroundings_;
  StringList keywords_;
  std::string answer_;
};

}  // namespace

CheckFactory make_body_check_factory(CheckSurroundings surroundings) {
  return [surroundings = std::move(surroundings)] { return std::make_shared<BodyCheck>(surroundings); };
}

}  // namespace zrl
