#include "pages/tools/keyword_tester_page.h"

#include "core/text/text.h"

namespace zrl {

KeywordTesterPage::KeywordTesterPage(Console& console) : Page(console, "keywordtester", "Keyword tester") {
  bind_busy(Command1, &KeywordTesterPage::test_body);
  bind_busy(Command2, &KeywordTesterPage::test_subject);

  set_layout(column({grow(Text1), row({Command1, Command2}), frame(Frame1, Label1)}));
}

void KeywordTesterPage::show() {
  translate_controls();
  load();
}

void KeywordTesterPage::load() {
  if (!plugins_.make()) Label1.set_caption(translate("Error while loading plugin"));
}

void KeywordTesterPage::test_body() {
  Label1.set_caption("");
  process_events();
  Label1.set_caption(answer_of(checks::body_stream, "BODYSTREAM"));
  if (Label1.caption().empty()) Label1.set_caption(answer_of(checks::surbl, "BODY"));
}

void KeywordTesterPage::test_subject() {
  constexpr std::string_view field = "subject:";
  Label1.set_caption("");
  process_events();
  if (lower(Text1.text().substr(0, field.size())) != field) Text1.set_text("Subject: " + Text1.text());
  Label1.set_caption(answer_of(checks::subject, "HEADER"));
}

std::string KeywordTesterPage::answer_of(std::string_view check, std::string_view position) {
  std::string answer;
  const std::string step = "call_module " + std::string(check) + " " + std::string(position) + " SEND";
  ask(plugins_, step, [&, text = Text1.text()](PluginHost& plugins) {
    answer = plugins.call_module(check, position, "SEND", text);
  });
  return answer;
}

}  // namespace zrl
