#include "pages/lists/exception_page.h"

namespace zrl {

ExceptionPage::ExceptionPage(Console& console) : ListPage(console, "exceptions", "Exceptions") {
  bind_lists(Text1, Place::forgotten, {domains_, mails_});
  bind_switches({{exceptdomain, "exceptdomain"}, {exceptmail, "exceptmail"}});
  bind_transfer(imleft, domains_);
  bind_transfer(imright, mails_);
  Command1.on_click = [this] { fill_lists(); };
  addex.on_click = [this] { add_text(); };
  removeex.on_click = [this] { remove_text(); };

  exceptdomains.set_acts({&Text1, &addex, &removeex});
  exceptmails.set_acts({&Text1, &addex, &removeex});
  Text1.set_expects(expects::domain_or_mail);

  set_layout(column({
      list_head(row({grow(Text1), addex, removeex}), {Command1}),
      grow(row({list_frame(Frame1, exceptdomains, {imleft}), list_frame(Frame2, exceptmails, {imright})})),
      frame(Frame3, grid({exceptdomain, exceptmail})),
  }));
}

void ExceptionPage::fill_lists() {
  fill_list_boxes();
  load_switches();
}

// The list that the text in the field belongs to.
const ListPage::List& ExceptionPage::own_list() const {
  return Text1.text().find('@') != std::string::npos ? mails_ : domains_;
}

void ExceptionPage::add_text() {
  add_to(own_list(), Text1.text());
  fill_lists();
}

// A field of blanks removes empty entries, which may exist in the table, from the list of domains.
void ExceptionPage::remove_text() {
  remove_from(own_list(), Text1.text());
  fill_lists();
}

}  // namespace zrl
