#include "pages/lists/local_user_page.h"

#include "core/contracts/directory.h"
#include "core/text/letter_case.h"
#include "core/text/text.h"

namespace zrl {

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

// A user who is added twice is stored twice; the domain is stored once.
void LocalUserPage::add_user() {
  uemail.set_text(lower_unicode(uemail.text()));
  if (uemail.text().find('@') == std::string::npos) return;
  const std::string address(trim(uemail.text()));
  const Statement addition = insert_into(list::local_users, address);
  // The flag also makes the proxy read the local users again.
  if (addition.fault().empty()) raise_flag("reloadblack");
  const bool stored = execute(addition);
  if (const std::string domain = domain_of_address(address); stored && !domain.empty()) {
    execute(delete_from(list::local_domains, domain));
    execute(insert_into(list::local_domains, domain));
  }
  fill_lists();
}

// The address is used as written, and its domain stays local.
void LocalUserPage::remove_user() {
  if (uemail.text().find('@') == std::string::npos) return;
  raise_flag("reloadblack");
  execute(delete_from(list::local_users, trim(uemail.text())));
  fill_lists();
}

void LocalUserPage::import_from_server() {
  if (Text1.text().empty()) return;
  set_string("ldapserver", Text1.text());
  adad();
  fill_lists();
}

void LocalUserPage::import_users() {
  adad();
  raise_flag("reloadblack");
  fill_lists();
}

// Without a directory there is nothing to check against, and the box does not stay ticked.
void LocalUserPage::click_check_real_ad() {
  std::string root_domain;
  if (check_real_ad.checked()) root_domain = directory_root();
  check_real_ad.set_checked(!root_domain.empty());
  set_option("check_real_ad", check_real_ad.value());
  if (!root_domain.empty()) execute(insert_into(list::local_domains, root_domain));
}

std::string LocalUserPage::directory_root() {
  std::string domain;
  if (const auto directory = component<DirectoryLookups>()) {
    ask(directory, "RootDomain", [&](DirectoryLookups& server) { domain = server.RootDomain(); });
  }
  return domain;
}

}  // namespace zrl
