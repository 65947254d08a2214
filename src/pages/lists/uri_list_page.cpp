#include "pages/lists/uri_list_page.h"

#include "core/text/error.h"
#include "core/text/text.h"

namespace zrl {

UriListPage::UriListPage(Console& console) : ListPage(console, "surbl", "URI block lists") {
  bind_lists(Text1, Place::kept, {{List1, "surblserver", "entry"}});
  bind_switches({{enablesurbl, "enablesurbl"}});
  bind_transfer(Command3, "surblserver", "entry", "URI Realtime Blocklists ");
  adduri.on_click = [this] { add(); };
  removeuri.on_click = [this] { remove(); };
  testit.on_click = [this] { busy(testit, [this] { test(); }); };

  set_layout(column({
      Text1,
      grow(list_frame(Frame1, List1, {adduri, removeuri, Command3})),
      frame(Frame2, grid({enablesurbl})),
      frame(Frame3, column({grow(Text2), row({testit}), uriresult})),
  }));
}

void UriListPage::load() {
  fill_lists();
  check_ = component<CheckPlugin>(checks::surbl);
}

void UriListPage::fill_lists() {
  fill_list_boxes();
  load_switches({&enablesurbl});
}

void UriListPage::add() {
  Text1.set_text(trim(Text1.text()));
  execute(delete_from("surblserver", "entry", Text1.text()));
  execute(insert_into("surblserver", "entry", Text1.text()));
  fill_lists();
}

void UriListPage::remove() {
  Text1.set_text(trim(Text1.text()));
  execute(delete_from("surblserver", "entry", Text1.text()));
  fill_lists();
}

// The text may be changed, and the page left, while the zones are asked. The last answer goes first,
// so that it does not pass for this one.
void UriListPage::test() {
  uriresult.set_caption("");
  console().attempt(ActivityRecord::Kind::component, "send to " + std::string(checks::surbl),
                    Console::Step::read, [this, check = check_, text = Text2.text()] {
                      if (!check) throw Error(error_number::object_not_set, "no URI check");
                      if (check->info() > 0) check->initmodule({});
                      check->send("BODY", "SEND", text);
                      uriresult.set_caption(check->send());
                    });
}

}  // namespace zrl
