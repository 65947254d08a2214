#include "pages/lists/subnet_page.h"

#include "core/text/text.h"

namespace zrl {

SubnetPage::SubnetPage(Console& console) : ListPage(console, "subnets", "Subnets") {
  bind_lists(subin, Place::kept, {black_, white_});
  for (ListBox* box : {&blacksub, &whitesub}) box->set_entries_are(EntryKind::network);
  bind_switches({{subnetcheck, "subnetcheck"}});
  bind_transfer(imleft, white_);
  bind_transfer(imright, black_);

  addwhite.on_click = [this] { add_network(white_); };
  addblack.on_click = [this] { add_network(black_); };
  removeit.on_click = [this] { remove_network(); };

  whitesub.set_acts({&subin, &addwhite, &removeit});
  blacksub.set_acts({&subin, &addblack, &removeit});
  subin.set_expects(expects::network);
  for (Button* act : {&addwhite, &addblack}) act->set_takes(subin, expects::network);

  set_layout(column({
      row({grow(subin), removeit}),
      grow(row({list_frame(Frame1, whitesub, {addwhite, imleft}),
                list_frame(Frame2, blacksub, {addblack, imright})})),
      frame(Frame3, grid({subnetcheck})),
  }));
}

void SubnetPage::fill_lists() {
  load_switches();
  fill_list_boxes();
}

void SubnetPage::add_network(const List& list) {
  subin.set_text(trim(subin.text()));
  const EntryChange change = add_to(list, subin.text());
  if (change.entry.empty()) {
    show_error("Please refer to your manual", "Incorrect Syntax");
    return;
  }
  subin.set_text(change.entry);
  fill_lists();
}

void SubnetPage::remove_network() {
  remove_from(black_, subin.text());
  fill_lists();
}

}  // namespace zrl
