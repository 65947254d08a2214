#include "pages/lists/mail_page.h"

#include "core/text/letter_case.h"
#include "core/text/text.h"

namespace zrl {

namespace {

bool has_at(std::string_view text) {
  return text.find('@') != text.npos;
}

}  // namespace

MailPage::MailPage(Console& console) : ListPage(console, "wbuser", "E-mail addresses") {
  bind_lists(mail, Place::kept, {white_, black_});
  bind_switches({{checkmail, "checkmail"}});
  bind_transfer(imleft, black_);
  bind_transfer(imright, white_);
  bind_update(remotelist, mail_list_files());

  bind_busy(addwhite, [this] { add(white_, black_, list::black_domains); });
  bind_busy(addblack, [this] { add(black_, white_, list::white_domains); });
  remove.on_click = [this] { remove_address(); };

  whitel.set_acts({&mail, &addwhite, &remove});
  blackl.set_acts({&mail, &addblack, &remove});

  set_layout(column({
      row({grow(mail), remove}),
      grow(row(
          {list_frame(Frame1, whitel, {addwhite, imright}), list_frame(Frame2, blackl, {addblack, imleft})})),
      row({remotelist}),
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

// Nothing is deleted first, so an address that is added twice is stored twice. The flags are raised
// even if nothing was stored.
void MailPage::add(const List& own, const List& other, const ListTable& other_domains) {
  mail.set_text(lower_unicode(mail.text()));
  const std::string_view address = trim(mail.text());
  if (has_at(address)) {
    execute(insert_into(own.table, address));
    execute(delete_from(other.table, address));
    const std::string domain = domain_of_address(address);
    if (!domain.empty()) execute(delete_from(other_domains, domain));
    fill_lists();
  }
  raise_flags(own);
}

void MailPage::remove_address() {
  const std::string address(trim(mail.text()));
  mail.set_text(lower_unicode(mail.text()));
  remove_lower(list::black_mails, address);
  remove_lower(list::white_mails, address);
  for (const std::string_view flag : {"reloadwhite", "reloadblack", "reloadauto"}) raise_flag(flag);
  fill_lists();
}

void MailPage::remove_local_user() {
  run([this] {
    if (!has_at(mail.text())) return;
    execute(delete_from(list::local_users, trim(mail.text())));
    fill_lists();
  });
}

}  // namespace zrl
