#include "pages/tools/keyword_tester_page.h"

#include "core/text/error.h"
#include "core/text/text.h"

namespace zrl {

KeywordTesterPage::KeywordTesterPage(Console& console) : Page(console, "keywordtester", "Keyword tester") {
  Command1.on_click = [this] { busy(Command1, [this] { test_body(); }); };
  Command2.on_click = [this] { busy(Command2, [this] { test_subject(); }); };

  set_layout(column({grow(Text1), row({Command1, Command2}), frame(Frame1, Label1)}));
}

void KeywordTesterPage::load() {
  plugins_ = component<PluginHost>();
  if (!plugins_) Label1.set_caption(translate("Error while loading plugin"));
}

void KeywordTesterPage::test_body() {
  Label1.set_caption("");
  process_events();
  Label1.set_caption(ask(checks::body_stream, "BODYSTREAM"));
  if (Label1.caption().empty()) Label1.set_caption(ask(checks::surbl, "BODY"));
}

void KeywordTesterPage::test_subject() {
  constexpr std::string_view field = "subject:";
  Label1.set_caption("");
  process_events();
  if (lower(Text1.text().substr(0, field.size())) != field) Text1.set_text("Subject: " + Text1.text());
  Label1.set_caption(ask(checks::subject, "HEADER"));
}

// The check may serve the event loop, in which the text may be changed and the page be left: it works
// on what it was asked.
std::string KeywordTesterPage::ask(std::string_view check, std::string_view position) {
  std::string answer;
  const std::string step = "call_module " + std::string(check) + " " + std::string(position) + " SEND";
  console().attempt(ActivityRecord::Kind::component, step, Console::Step::read,
                    [&, plugins = plugins_, text = Text1.text()] {
                      if (!plugins) throw Error(error_number::object_not_set, "no plug-in host");
                      answer = plugins->call_module(check, position, "SEND", text);
                    });
  return answer;
}

}  // namespace zrl
