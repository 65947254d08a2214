#include "pages/lists/mail_page.h"

#include "core/text/text.h"

namespace zrl {

namespace {

bool has_at(std::string_view text) {
  return text.find('@') != text.npos;
}

}  // namespace

MailPage::MailPage(Console& console) : ListPage(console, "wbuser", "E-mail addresses") {
  bind_lists(
      mail, Place::kept,
      {{whitel, "whitemail", "entry", Entries::with_at}, {blackl, "blackmail", "entry", Entries::with_at}});
  bind_switches({{checkmail, "checkmail"}});
  bind_transfer(imleft, "blackmail", "entry", "eMail Blacklist", {"reloadblack", "reloadauto"});
  bind_transfer(imright, "whitemail", "entry", "eMail Whitelist", {"reloadwhite", "reloadauto"});
  bind_update(remotelist, mail_list_files());

  addwhite.on_click = [this] { busy(addwhite, [this] { add(white); }); };
  addblack.on_click = [this] { busy(addblack, [this] { add(black); }); };
  remove.on_click = [this] { remove_address(); };

  set_layout(column({
      mail,
      grow(row(
          {list_frame(Frame1, whitel, {addwhite, imright}), list_frame(Frame2, blackl, {addblack, imleft})})),
      row({remove, remotelist}),
      frame(Frame3, grid({checkmail})),
  }));
}

void MailPage::load() {
  load_switch(checkmail);
  fill_lists();
}

void MailPage::fill_lists() {
  fill_list_boxes();
}

// Without a deletion first: an address that is added twice is stored twice. The flags are raised
// even if nothing was stored.
void MailPage::add(const Side& side) {
  mail.set_text(lower(mail.text()));
  const std::string_view address = trim(mail.text());
  if (has_at(address)) {
    execute(insert_into(side.table, "entry", address));
    execute(delete_from(side.other_table, "entry", address));
    const std::string domain = domain_of_address(address);
    if (!domain.empty()) execute(delete_from(side.other_domains, "entry", domain));
    fill_lists();
  }
  raise_flag(side.flag);
  raise_flag("reloadauto");
}

void MailPage::remove_address() {
  mail.set_text(lower(mail.text()));
  const std::string_view address = trim(mail.text());
  execute(delete_from("blackmail", "entry", address));
  execute(delete_from("whitemail", "entry", address));
  for (const std::string_view flag : {"reloadwhite", "reloadblack", "reloadauto"}) raise_flag(flag);
  fill_lists();
}

void MailPage::remove_local_user() {
  run([this] {
    if (!has_at(mail.text())) return;
    execute(delete_from("localmail", "entry", trim(mail.text())));
    fill_lists();
  });
}

}  // namespace zrl
