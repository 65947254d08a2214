#include "pages/lists/local_user_page.h"

#include <array>

#include "core/contracts/directory.h"
#include "core/text/letter_case.h"

namespace zrl {

namespace {

bool has_at(std::string_view text) {
  return text.find('@') != text.npos;
}

constexpr Sentence users_imported{"Users taken from the directory", "Users not taken from the directory"};

}  // namespace

LocalUserPage::LocalUserPage(Console& console) : ListPage(console, "localuser", "Local users") {
  bind_lists(uemail, Place::forgotten, {users_});
  bind_switches(
      {{usercheck, "localmail"}, {fakeprotectuser, "nofakemail"}, {check_real_ad, "check_real_ad"}});
  check_real_ad.on_click = [this] { click_check_real_ad(); };
  bind_transfer(imexfile, users_);

  bind_busy(adduser, &LocalUserPage::add_user);
  removeuser.on_click = [this] { remove_user(); };
  bind_busy(Command1, &LocalUserPage::import_from_server);
  bind_busy(importat, &LocalUserPage::import_users);

  List1.set_acts({&uemail, &adduser, &removeuser});
  uemail.set_expects(expects::mail_address);

  set_layout(column({
      uemail,
      grow(list_frame(Frame1, List1, {adduser, removeuser, imexfile})),
      frame(Frame2, column({Text1, row({Command1, importat}), check_real_ad})),
      frame(Frame3, grid({usercheck, fakeprotectuser})),
  }));
}

void LocalUserPage::load() {
  fill_lists();
  if (const auto server = read_string("ldapserver")) Text1.set_text(*server);
}

void LocalUserPage::fill_lists() {
  fill_list_boxes();
  load_switches();
}

void LocalUserPage::add_user() {
  uemail.set_text(lower_unicode(uemail.text()));
  if (!has_at(uemail.text())) return say_nothing(said::address_needs_at);
  add_to(users_, uemail.text());
  fill_lists();
}

void LocalUserPage::remove_user() {
  if (!has_at(uemail.text())) return say_nothing("Nothing removed: an address needs an at sign");
  remove_from(users_, uemail.text());
  fill_lists();
}

void LocalUserPage::import_from_server() {
  if (Text1.text().empty()) return say_nothing(said::needs_text);
  set_string("ldapserver", Text1.text());
  adad();
  say(users_imported);
  fill_lists();
}

void LocalUserPage::import_users() {
  adad();
  say(users_imported);
  raise_flag("reloadblack");
  fill_lists();
}

// Without a directory there is nothing to check against, and the box does not stay ticked.
void LocalUserPage::click_check_real_ad() {
  std::string root_domain;
  const bool wanted = check_real_ad.checked();
  if (wanted) root_domain = directory_root();
  check_real_ad.set_checked(!root_domain.empty());
  set_option("check_real_ad", check_real_ad.value());
  if (!root_domain.empty()) run_entry_steps(*this, std::array{put_on(list::local_domains)}, root_domain);
  if (wanted && root_domain.empty()) {
    say_failed(said::switched_on.failed, {check_real_ad.caption()});
  } else {
    say_switched(check_real_ad, wanted);
  }
}

std::string LocalUserPage::directory_root() {
  std::string domain;
  if (const auto directory = component<DirectoryLookups>()) {
    ask(directory, "RootDomain", [&](DirectoryLookups& server) { domain = server.RootDomain(); });
  }
  return domain;
}

}  // namespace zrl
