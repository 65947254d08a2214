#include "pages/tools/regex_tester_page.h"

#include "core/text/text.h"

namespace zrl {

RegexTesterPage::RegexTesterPage(Console& console) : Page(console, "regEx", "Regular expression tester") {
  Command1.on_click = [this] { test_expression(); };

  reguex.set_expects(expects::expression);
  Command1.set_primary();
  set_layout(column({row({grow(reguex)}), grow(searchtext), row({Command1}), frame(Frame1, rresult)}));
}

void RegexTesterPage::test_expression() {
  if (!lower(reguex.text().substr(0, 6)).starts_with("regex["))
    reguex.set_text("REGEX[" + reguex.text() + "]");
  const std::string found = console().regex_match(reguex.text(), searchtext.text());
  if (found.empty()) {
    rresult.set_caption(translate("Nothing found"));
  } else {
    rresult.set_caption(std::string(product_name) + " " + translate("Regular Expression Engine found:") +
                        " " + found);
  }
}

}  // namespace zrl
