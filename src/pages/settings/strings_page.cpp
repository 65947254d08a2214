#include "pages/settings/strings_page.h"

#include <array>

#include "core/text/text.h"

namespace zrl {

namespace {

constexpr Sentence texts_stored{"Reply texts stored", "Reply texts not stored"};
constexpr Sentence banner_stored{"The default banner is stored", "The default banner was not stored"};

struct ReplyText {
  TextField StringsPage::* field;
  std::string_view key;
  std::string_view default_text;
};

constexpr std::array<ReplyText, 4> reply_texts = {{
    {&StringsPage::welcome, "welcome", "220 Mirvan"},
    {&StringsPage::hello, "hello", "250 Hello - Please do not SPAM me "},
    {&StringsPage::bye, "bye", "221 2.0.0 thank you for not SPAMMING me"},
    {&StringsPage::queue, "queue", "250 2.6.0 You got rid of your HAM"},
}};

constexpr std::string_view default_banner =
    "220-************************************************\r\n"
    "220-Mirvan here\r\n"
    "220-Please accept our Mail Policy and do not SPAM us\r\n"
    "220-We are protected by Mirvan (http://www.mirvan.example/)\r\n"
    "220 ************************************************";

}  // namespace

StringsPage::StringsPage(Console& console) : Page(console, "strings", "Reply texts") {
  updatedb.on_click = [this] { store_strings(); };
  Command1.on_click = [this] { load_strings(); };
  Command2.on_click = [this] { store_default_banner(); };

  for (const ReplyText& reply : reply_texts) bind_text(this->*reply.field, reply.key);
  for (TextField* reply : {&welcome, &hello, &bye, &queue}) reply->set_expects(expects::reply);

  updatedb.set_primary();
  Command1.set_replaces({&welcome, &hello, &bye, &queue});
  Command2.set_destroys(loss::banner);

  set_layout(column({
      frame(Frame1, column({welcome, row({grow(hello)}), row({grow(bye)}), row({grow(queue)})})),
      row({updatedb, Command1, Command2}),
  }));
}

void StringsPage::load_strings() {
  for (const ReplyText& reply : reply_texts) {
    if (const auto stored = read_string(reply.key)) (this->*reply.field).set_text(*stored);
  }
  for (const ReplyText& reply : reply_texts) {
    TextField& field = this->*reply.field;
    if (!trim(field.text()).empty()) continue;
    set_string(reply.key, reply.default_text);
    field.set_text(reply.default_text);
  }
  publish_version();
}

// Trimming removes line breaks at the end as well as blanks.
void StringsPage::store_strings() {
  for (const ReplyText& reply : reply_texts) {
    const std::string_view text = trim((this->*reply.field).text());
    if (!text.empty()) set_string(reply.key, text);
  }
  say(texts_stored);
}

void StringsPage::store_default_banner() {
  welcome.set_text(default_banner);
  set_string("welcome", default_banner);
  say(banner_stored);
}

}  // namespace zrl
