#include "pages/settings/pop_config_page.h"

#include <algorithm>

#include "core/text/text.h"

namespace zrl {

namespace {

constexpr std::string_view default_interval = "5";
constexpr std::string_view spam_tag = "[SPAM]";
// The mail server's instance whose folders replace missing ones.
constexpr unsigned mail_server_instance = 1;

constexpr Sentence account_stored{"Account %1 stored", "Account %1 not stored"};
constexpr Sentence account_deleted{"Account %1 deleted", "Account %1 not deleted"};
constexpr Sentence interval_stored{"Mail is collected every %1 minutes",
                                   "The interval \"%1\" was not stored"};

// As PopConfigPage::value_controls().
constexpr std::string_view columns[] = {"leave",  "spamtobadmail", "subjectdelete", "maxsize", "scan",
                                        "submit", "forward",       "spamforward",   "badmail", "password",
                                        "tag"};

// As the form shows it.
std::string value_of(RecordSet& row, std::string_view column, const Control& control) {
  if (column == "tag") return row.text(column).empty() ? "0" : "1";
  if (control.kind() == ControlKind::check_box) return row.number(column) != 0 ? "1" : "0";
  if (column == "maxsize" && row.is_null(column)) return "0";
  return std::string(row.text(column));
}

// A value that the service cannot use is stored as empty, which switches that kind of delivery off.

std::string_view accepted_pickup(std::string_view folder) {
  return folder.find(':') == folder.npos ? std::string_view() : folder;
}

std::string_view accepted_address(std::string_view address) {
  return address.find('@') == address.npos ? std::string_view() : address;
}

std::string_view accepted_badmail(std::string_view folder) {
  const bool on_network = folder.starts_with("\\\\");
  const bool on_drive = folder.size() >= 3 && folder.substr(1, 2) == ":\\";
  return on_network || on_drive ? folder : std::string_view();
}

}  // namespace

PopConfigPage::PopConfigPage(Console& console) : Page(console, "pop_config", "POP3 accounts") {
  bind_switches({{enable_pop3, "enable_pop3"}});
  setpoptime.on_click = [this] { store_interval(); };
  userlist.on_click = [this] { show_account(); };
  addmod.on_click = [this] { save_account(); };
  deletea.on_click = [this] { delete_account(); };
  clearnew.on_click = [this] { start_account(); };

  bind_text(poptime, "poptime");
  for (Control* control : std::initializer_list<Control*>{&userlist, &clearnew}) {
    control->set_replaces({&username, &server, &password, &maxsize, &subm, &forward, &spamforward, &badmail});
  }

  addmod.set_primary();
  constexpr std::int64_t longest_interval = 32'767;
  constexpr std::int64_t largest_limit = 2'147'483'647;
  poptime.set_expects({Expectation::Kind::number, 1, longest_interval});
  maxsize.set_expects({Expectation::Kind::number, 0, largest_limit});
  server.set_expects(expects::host);
  for (TextField* address : {&forward, &spamforward}) address->set_expects(expects::mail_address);
  deletea.set_destroys(
      loss::account, [this] { return userlist.items().find(account()) < userlist.items().size() ? 1U : 0U; });

  set_layout(row({
      grow(column({
          frame(Frame1, column({grid({enable_pop3}), row({poptime, setpoptime})})),
          grow(frame(Frame2, column({grow(userlist), row({clearnew, deletea})}))),
      })),
      grow(column({
          frame(Frame3, column({grid({username, server, password, maxsize}), row({leave, scan})})),
          frame(Frame4, grid({subm, forward})),
          frame(Frame5,
                column({column({tagging, subjectdelete, spamtobadmail}), grid({spamforward, badmail})})),
          row({addmod}),
      })),
  }));
}

void PopConfigPage::load() {
  load_switch(enable_pop3);
  load_interval();
  fill_list();
}

void PopConfigPage::load_interval() {
  const auto interval = read_option("poptime");
  poptime.set_text(interval && !interval->empty() ? std::string_view(interval->text) : default_interval);
}

void PopConfigPage::fill_list() {
  userlist.set_items(rows("pop3", "entry").value_or(StringList()));
}

// The account's name in the table.
std::string PopConfigPage::account() const {
  return username.text() + "," + server.text();
}

// The form is emptied first, so that a value that cannot be read is not that of the account before.
void PopConfigPage::show_account() {
  const std::string entry(userlist.chosen());
  empty_form();
  // A server's name holds no comma, a user's name may.
  const std::size_t comma = entry.rfind(',');
  username.set_text(entry.substr(0, comma));
  if (comma != entry.npos) server.set_text(entry.substr(comma + 1));

  const auto row =
      open("SELECT * FROM pop3 where entry='" + value(entry) + "'", Connection::Access::read_only);
  if (!row || row->at_end()) return;
  Values values;
  const std::array controls = value_controls();
  for (std::size_t i = 0; i < value_count; ++i) {
    values[i] = value_of(*row, columns[i], *controls[i]);
    show_value(*controls[i], values[i]);
  }
  loaded_ = Loaded{entry, std::move(values)};
}

std::array<Control*, PopConfigPage::value_count> PopConfigPage::value_controls() {
  return {&leave,   &spamtobadmail, &subjectdelete, &maxsize,  &scan,   &subm,
          &forward, &spamforward,   &badmail,       &password, &tagging};
}

PopConfigPage::Values PopConfigPage::shown_values() {
  Values values;
  std::ranges::transform(value_controls(), values.begin(), [](Control* control) -> std::string {
    if (control->kind() == ControlKind::text_field) return static_cast<TextField*>(control)->text();
    return static_cast<CheckBox*>(control)->checked() ? "1" : "0";
  });
  return values;
}

void PopConfigPage::show_value(Control& control, const std::string& value) {
  if (control.kind() == ControlKind::text_field) {
    static_cast<TextField&>(control).set_text(value);
  } else {
    static_cast<CheckBox&>(control).set_checked(value == "1");
  }
}

// Nothing if there is no such row any more. Other than for a read-only set, the transaction stays open.
std::optional<PopConfigPage::Values> PopConfigPage::stored_values(const std::string& entry) {
  const auto row =
      open("SELECT * FROM pop3 where entry='" + value(entry) + "'", Connection::Access::updatable);
  if (!row || row->at_end()) return {};
  Values values;
  const std::array controls = value_controls();
  const bool read = read_rows("pop3", [&] {
    for (std::size_t i = 0; i < value_count; ++i) values[i] = value_of(*row, columns[i], *controls[i]);
  });
  return read ? std::optional(std::move(values)) : std::nullopt;
}

PopConfigPage::Turn PopConfigPage::compare(const std::string& entry) {
  if (!console().host().guards_newer_values()) return Turn::write;
  const bool known = loaded_ && loaded_->entry == entry;
  // Who types the name of an account from the list wants to change it as a whole.
  if (!known && userlist.items().find(entry) < userlist.items().size()) return Turn::write;
  std::optional<Values> stored = stored_values(entry);
  if (!stored) return Turn::write;

  const std::array controls = value_controls();
  const Values here = shown_values();
  std::vector<std::size_t> disputed;
  std::string newer;
  for (std::size_t i = 0; i < value_count; ++i) {
    const std::string& now = (*stored)[i];
    const bool stays = controls[i] == &maxsize && here[i].empty();
    if (stays || now == here[i] || (known && now == loaded_->values[i])) continue;
    if (known && here[i] == loaded_->values[i]) {
      show_value(*controls[i], now);
      continue;
    }
    disputed.push_back(i);
    std::string shown = now;
    if (controls[i]->kind() == ControlKind::check_box) shown = translate(now == "1" ? "yes" : "no");
    if (controls[i] == &password) shown = "********";
    newer += (newer.empty() ? "" : "\r\n") + label_of(*controls[i]) + ": " + shown;
  }
  if (disputed.empty()) return Turn::write;

  const Answer answer = ask_about_newer(entry, newer);
  if (answer == Answer::cancel) {
    failed(Kind::sql, "not stored: " + entry, "somebody else has stored another value meanwhile",
           Step::write);
    return Turn::not_decided;
  }
  for (const std::size_t i : disputed) {
    if (answer == Answer::keep_theirs) show_value(*controls[i], (*stored)[i]);
  }
  loaded_ = Loaded{entry, std::move(*stored)};
  return Turn::again;
}

void PopConfigPage::remember_stored(const std::string& entry) {
  if (!console().host().guards_newer_values()) return;
  std::optional<Values> stored = stored_values(entry);
  console().writes().if_dropped(static_cast<const DatabaseClient*>(this),
                                [this, before = loaded_] { loaded_ = before; });
  loaded_.reset();
  if (stored) loaded_ = Loaded{entry, std::move(*stored)};
}

// The table refuses a second row of the same name, so for an account that is there the first
// statement fails and the others update the row.
void PopConfigPage::save_account() {
  if (username.text().empty() || server.text().empty()) {
    return say_nothing("Nothing stored: an account needs a user name and a server");
  }
  const std::string entry = account();
  const auto set_number = [&](Literal column, std::string_view text) {
    execute("UPDATE pop3 set " + column + "=" + number(text) + " where entry='" + value(entry) + "'");
  };
  const auto set_switch = [&](Literal column, const CheckBox& box) {
    set_number(column, box.checked() ? "1" : "0");
  };
  const auto set_text = [&](Literal column, const Value& text) {
    execute("UPDATE pop3 set " + column + "='" + text + "' where entry='" + value(entry) + "'");
  };

  Turn turn = Turn::again;
  while (turn == Turn::again) {
    const bool is_new = execute(insert_into("pop3", "entry", entry), Failure::expected);
    turn = is_new ? Turn::write : compare(entry);
  }
  if (turn == Turn::not_decided) return say(account_stored, {entry});
  set_switch("leave", leave);
  set_switch("spamtobadmail", spamtobadmail);
  set_switch("subjectdelete", subjectdelete);
  if (!maxsize.text().empty()) set_number("maxsize", maxsize.text());
  set_switch("scan", scan);
  const std::string_view pickup = accepted_pickup(subm.text());
  const std::string_view recipient = accepted_address(forward.text());
  const std::string_view spam_recipient = accepted_address(spamforward.text());
  const std::string_view spam_folder = accepted_badmail(badmail.text());
  set_text("submit", value(pickup));
  set_text("forward", value(recipient));
  set_text("spamforward", value(spam_recipient));
  set_text("badmail", value(spam_folder));
  set_text("[password]", secret(password.text()));
  set_text("tag", value(tagging.checked() ? spam_tag : std::string_view()));
  remember_stored(entry);
  store_directories();
  say(account_stored, {entry});
  show_accepted(subm, pickup, "a pick-up folder needs a colon");
  show_accepted(forward, recipient, "an address needs an at sign");
  show_accepted(spamforward, spam_recipient, "an address needs an at sign");
  show_accepted(badmail, spam_folder, "a folder for spam begins with its drive or is on the network");
  fill_list();
}

// The field shows what was stored, and the record says why that is not what was typed.
void PopConfigPage::show_accepted(TextField& field, std::string_view accepted, const std::string& rule) {
  if (field.text() == accepted) return;
  failed(Kind::option, field.name() + " " + field.text(), rule + ", so it is stored as empty");
  field.set_text("");
}

// For an account that names no folder, the service uses the common ones: the mail server's own.
void PopConfigPage::store_directories() {
  const SmtpDirectories own = settings().smtp_directories(mail_server_instance);
  if (badmail.text().empty() && !own.bad_mail.empty()) set_string("badmail", own.bad_mail);
  if (subm.text().empty() && !own.pickup.empty()) set_string("pickup", own.pickup);
}

void PopConfigPage::delete_account() {
  execute(delete_from("pop3", "entry", account()));
  say(account_deleted, {account()});
  fill_list();
}

void PopConfigPage::start_account() {
  userlist.set_index(-1);
  empty_form();
}

void PopConfigPage::empty_form() {
  loaded_.reset();
  for (TextField* field :
       {&username, &server, &password, &maxsize, &subm, &forward, &spamforward, &badmail}) {
    field->set_text("");
  }
  for (CheckBox* box : {&leave, &scan, &tagging, &subjectdelete, &spamtobadmail}) box->set_checked(false);
}

void PopConfigPage::store_interval() {
  const std::string minutes = poptime.text();
  const bool stored = store_number<std::int16_t>("poptime", minutes);
  say(interval_stored, {minutes});
  if (!stored) load_interval();
}

}  // namespace zrl
