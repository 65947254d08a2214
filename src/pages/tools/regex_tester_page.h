#pragma once

#include "core/page.h"

namespace zrl {

// Tries a regular expression, as a list entry would hold it, on a sample text. The console's limit for the
// time of a search applies here too.
class RegexTesterPage : public Page {
 public:
  explicit RegexTesterPage(Console& console);

  TextField reguex{
      *this,
      "reguex",
      "The expression to try. It is put into REGEX[...], the form in which it belongs into a list",
      {.fixed_pitch = true}};
  Label Label1{*this, "Label1", "Regular expression", reguex};
  TextField searchtext{
      *this, "searchtext", "The text that is searched; case is ignored", {.multi_line = true}};
  Label Label2{*this, "Label2", "Sample text", searchtext};
  Button Command1{*this, "Command1", "Test",
                  "Searches the text and shows what the expression matches first. An expression that is not "
                  "well-formed finds nothing; the activity tells what is wrong with it"};
  Frame Frame1{*this, "Frame1", "Result"};
  Label rresult{*this, "rresult", ""};

 private:
  // Without a connection, because nothing is read or stored.
  void show() override { translate_controls(); }
  void load() override {}

  void test_expression();
};

}  // namespace zrl
