#include "pages/lists/uri_list_page.h"

#include "core/text/text.h"

namespace zrl {

UriListPage::UriListPage(Console& console) : ListPage(console, "surbl", "URI block lists") {
  bind_lists(Text1, Place::kept, {zones_});
  bind_switches({{enablesurbl, "enablesurbl"}});
  bind_transfer(Command3, zones_);
  adduri.on_click = [this] { show_change(add_to(zones_, Text1.text())); };
  removeuri.on_click = [this] { show_change(remove_from(zones_, Text1.text())); };
  bind_busy(testit, &UriListPage::test);

  List1.set_acts({&Text1, &adduri, &removeuri});
  Text1.set_expects(expects::domain);

  set_layout(column({
      Text1,
      grow(list_frame(Frame1, List1, {adduri, removeuri, Command3})),
      frame(Frame2, grid({enablesurbl})),
      frame(Frame3, column({grow(Text2), row({testit}), uriresult})),
  }));
}

void UriListPage::load() {
  fill_lists();
  check_.make();
}

void UriListPage::fill_lists() {
  fill_list_boxes();
  load_switches();
}

void UriListPage::show_change(const EntryChange& change) {
  Text1.set_text(change.entry);
  fill_lists();
}

// The text may change, and the page may be left, while the zones are asked. The last answer is removed first,
// so that it is not mistaken for the new one.
void UriListPage::test() {
  uriresult.set_caption("");
  const bool checked =
      ask(check_, "send to " + std::string(checks::surbl), [this, text = Text2.text()](CheckPlugin& check) {
        if (check.info() > 0) check.initmodule({});
        check.send("BODY", "SEND", text);
        uriresult.set_caption(check.send());
      });
  if (!checked) return say_failed("The text was not checked");
  if (uriresult.caption().empty()) return say_done("No link in the text is listed");
  say_done("%1", {uriresult.caption()});
}

}  // namespace zrl
