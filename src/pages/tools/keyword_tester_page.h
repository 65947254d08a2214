#pragma once

#include "core/contracts/check_plugin.h"
#include "core/page.h"

namespace zrl {

// Runs the service's own checks on a sample text and shows their answers. The checks run in the console, by
// the stored lists and options; the service is not asked and need not run.
class KeywordTesterPage : public Page {
 public:
  explicit KeywordTesterPage(Console& console);

  TextField Text1{*this, "Text1", "The text to check, as a mail would hold it", {.multi_line = true}};
  Label Label2{*this, "Label2", "Sample text", Text1};
  Button Command1{
      *this, "Command1", "Test as message body",
      "Looks for the body keywords, and if there are none, for host names that are on a block list"};
  Button Command2{*this, "Command2", "Test as subject",
                  "Checks the text as a subject: the subject keywords, the subject white list if it is used, "
                  "and the rules for conspicuous subjects that are switched on"};
  Frame Frame1{*this, "Frame1", "Result"};
  Label Label1{*this, "Label1", "", "What the checks found; empty if they found nothing"};

 private:
  // Without a connection: the checks open their own.
  void show() override;
  void load() override;

  void test_body();
  void test_subject();
  std::string answer_of(std::string_view check, std::string_view position);

  Held<PluginHost> plugins_{*this, "plug-in host"};
};

}  // namespace zrl
