#include "pages/lists/exception_page.h"

#include "core/text/text.h"

namespace zrl {

namespace {

// The list that an entry belongs to.
const ListTable& list_of(std::string_view entry) {
  return entry.find('@') != entry.npos ? list::exempt_mails : list::exempt_domains;
}

}  // namespace

ExceptionPage::ExceptionPage(Console& console) : ListPage(console, "exceptions", "Exceptions") {
  bind_lists(Text1, Place::forgotten, {domains_, mails_});
  bind_switches({{exceptdomain, "exceptdomain"}, {exceptmail, "exceptmail"}});
  bind_transfer(imleft, domains_);
  bind_transfer(imright, mails_);
  Command1.on_click = [this] { fill_lists(); };
  addex.on_click = [this] { add(); };
  removeex.on_click = [this] { remove(); };

  exceptdomains.set_acts({&Text1, &addex, &removeex});
  exceptmails.set_acts({&Text1, &addex, &removeex});

  set_layout(column({
      row({grow(Text1), addex, removeex}),
      grow(row({list_frame(Frame1, exceptdomains, {imleft}), list_frame(Frame2, exceptmails, {imright})})),
      row({Command1}),
      frame(Frame3, grid({exceptdomain, exceptmail})),
  }));
}

void ExceptionPage::fill_lists() {
  fill_list_boxes();
  load_switches();
}

// Nothing is deleted first, so an entry that is added twice is stored twice.
void ExceptionPage::add() {
  const std::string_view entry = trim(Text1.text());
  if (!entry.empty()) execute(insert_into(list_of(entry), entry));
  fill_lists();
}

// A field of blanks removes empty entries, which may exist in the table, from the list of domains.
void ExceptionPage::remove() {
  const std::string_view entry = trim(Text1.text());
  if (!Text1.text().empty()) execute(delete_from(list_of(entry), entry));
  fill_lists();
}

}  // namespace zrl
