#include "pages/lists/mail_page.h"

#include <array>

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
  for (ListBox* box : {&blackl, &whitel}) box->set_entries_are(EntryKind::mail_address);
  bind_switches({{checkmail, "checkmail"}});
  bind_transfer(imleft, black_);
  bind_transfer(imright, white_);
  bind_update(remotelist, mail_list_files());

  bind_busy(addwhite, [this] { add_address(white_); });
  bind_busy(addblack, [this] { add_address(black_); });
  remove.on_click = [this] { remove_address(); };

  whitel.set_acts({&mail, &addwhite, &remove});
  blackl.set_acts({&mail, &addblack, &remove});
  mail.set_expects(expects::mail_address);

  set_layout(column({
      list_head(row({grow(mail), remove}), {remotelist}),
      grow(row(
          {list_frame(Frame1, whitel, {addwhite, imright}), list_frame(Frame2, blackl, {addblack, imleft})})),
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

void MailPage::add_address(const List& list) {
  mail.set_text(lower_unicode(mail.text()));
  add_to(list, mail.text());
  if (has_at(mail.text())) fill_lists();
}

void MailPage::remove_address() {
  const std::string address = mail.text();
  mail.set_text(lower_unicode(address));
  remove_from(black_, address);
  fill_lists();
}

void MailPage::remove_local_user() {
  run([this] {
    if (!has_at(mail.text())) return;
    run_entry_steps(*this, std::array{take_off(list::local_users)}, trim(mail.text()));
    fill_lists();
  });
}

}  // namespace zrl
