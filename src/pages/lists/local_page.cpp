#include "pages/lists/local_page.h"

#include "core/text/list_entry.h"
#include "core/text/text.h"

namespace zrl {

LocalPage::LocalPage(Console& console) : ListPage(console, "localstuff", "Local domains and IP numbers") {
  bind_lists(Text1, Place::forgotten, {domains_, addresses_});
  bind_switches({{acheck, "norelay"}, {checklocalhelo, "checklocalhelo"}, {nofakedom, "nofakedom"}});
  bind_transfer(imleft, domains_);
  bind_transfer(imright, addresses_);

  bind_busy(Command1, &LocalPage::add);
  Command2.on_click = [this] { remove(); };
  Command3.on_click = [this] { fill_lists(); };

  List1.set_acts({&Text1, &Command1, &Command2});
  List2.set_acts({&Text1, &Command1, &Command2});

  set_layout(column({
      row({grow(Text1), Command1, Command2}),
      grow(row({list_frame(Frame1, List1, {imleft}), list_frame(Frame2, List2, {imright})})),
      row({Command3}),
      frame(Frame3, grid({acheck, checklocalhelo, nofakedom})),
  }));
}

void LocalPage::fill_lists() {
  Text1.set_text("");
  fill_list_boxes();
  load_switches();
}

void LocalPage::add() {
  const std::string entry(trim(Text1.text()));
  if (is_ip_address(entry)) {
    execute(delete_from(list::local_addresses, entry));
    execute(insert_into(list::local_addresses, entry));
  } else if (!entry.empty()) {
    execute(delete_from(list::local_domains, entry));
    execute(insert_into(list::local_domains, entry));
  }
  fill_lists();
}

void LocalPage::remove() {
  const std::string entry(trim(Text1.text()));
  if (entry.empty()) return;
  execute(delete_from(list::local_addresses, entry));
  execute(delete_from(list::local_domains, entry));
  fill_lists();
}

}  // namespace zrl
