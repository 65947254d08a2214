#include "pages/traffic/lookup_page.h"

#include <algorithm>
#include <utility>

#include "core/text/filled.h"
#include "core/text/row_filter.h"
#include "core/text/text.h"

namespace zrl {

namespace {

// Beyond that many entries their hits are not counted.
constexpr std::size_t most_counted_entries = 50;

// Outlives other look-ups, and holds no comma, whatever the entry holds (FNV-1a).
std::string key_of(const KnownList& list, std::string_view entry) {
  std::uint64_t hash = 0xcbf29ce484222325U;
  for (const char c : entry) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
  return std::string(list.table.name) + ":" + std::to_string(hash);
}

// "20261121221000" of "2026-11-21 22:10:00"; what has another form stays as it is.
std::string digits_of_time(std::string_view stored) {
  constexpr std::string_view form = "0000-00-00 00:00:00";
  std::string digits;
  if (stored.size() != form.size()) return std::string(stored);
  for (std::size_t i = 0; i < form.size(); ++i) {
    const bool is_digit = stored[i] >= '0' && stored[i] <= '9';
    if (is_digit != (form[i] == '0') || (!is_digit && stored[i] != form[i])) return std::string(stored);
    if (is_digit) digits += stored[i];
  }
  return digits;
}

// What finds the rows of the subject in the page of all logs.
std::string message_filter(const Subject& subject) {
  switch (subject.kind) {
    case Subject::Kind::nothing:
      return {};
    case Subject::Kind::address:
    case Subject::Kind::network:
      return filter_term("ip", subject.text);
    case Subject::Kind::mail:
      return filter_term("from", subject.text);
    case Subject::Kind::domain:
      return filter_term("from", "@" + subject.text);
    case Subject::Kind::text:
      return filter_term({}, subject.text);
  }
  return {};
}

}  // namespace

LookupPage::LookupPage(Console& console) : Page(console, "lookup", "Look up") {
  look.on_click = [this] { look_up(); };
  list.on_click = [this] { list_is_usual_ = false; };
  list.on_change = [this] { list_is_usual_ = false; };
  entries.on_choose = [this] { choose_entry(); };
  bind_busy(add, &LookupPage::add_subject);
  bind_busy(remove, &LookupPage::remove_targets);
  save_note.on_click = [this] { save_notes(); };
  bind_busy(ask_dns, &LookupPage::ask_dns_servers);

  entries.set_empty_text("No entry of a list touches what is looked up");
  counts.set_empty_text("The logs have no rows of it");
  log.set_empty_text("The logs have no rows of it");
  dns.set_empty_text("The DNS has not been asked");

  look.set_primary();
  for (Button* button : {&look, &add, &remove, &save_note, &ask_dns}) button->set_needs({&what});

  set_layout(column({
      row({grow(what), look}),
      verdict,
      grow(entries),
      frame(change_frame, row({list, grow(comment), expires, add, remove, save_note})),
      grow(row({grow(counts), grow(log)})),
      row({ask_dns, messages}),
      dns,
  }));
}

void LookupPage::load() {
  StringList titles;
  for (const KnownList& known : known_lists()) titles.push_back(translate(known.title));
  list.set_items(std::move(titles));
  dns_client_.make();
  block_lists_.make();
  look_up();
}

void LookupPage::open_query(std::string_view query) {
  what.set_text(query);
  look_up();
}

void LookupPage::look_up() {
  Subject asked_about = subject_of(what.text());
  if (asked_about.text != subject_.text) clear_shown_note();
  subject_ = std::move(asked_about);
  set_query(subject_.text);
  if (list_is_usual_) {
    const KnownList* usual = find_list(usual_list(subject_.kind));
    list.set_text(translate(usual->title));
  }
  findings_ = search_lists(*this, console(), subject_);
  show_entries();
  show_log();
  dns_rows_.show({});
  const bool asked = subject_.kind != Subject::Kind::nothing;
  const Verdict said = asked ? verdict_on(console(), subject_, findings_) : Verdict();
  verdict.set_caption(said.sentence);
  verdict.set_tone(said.tone());
}

void LookupPage::show_entries() {
  TableRows rows;
  for (const ListFinding& finding : findings_.entries) {
    const KnownList& known = *finding.list;
    const ListSwitch* off = finding.switched_off;
    rows.row(key_of(known, finding.entry)).cell(translate(known.title)).link(known.page, {});
    rows.cell(known.table.name).cell(finding.entry).cell(translate(name_of(finding.match)));
    rows.cell(off == nullptr ? translate("yes")
                             : filled(translate("no, \"%1\" is off"), {translate(off->caption)}));
    rows.cell(finding.comment).cell("").cell("").cell(finding.expires);
    const auto hits =
        rows.size() > most_counted_entries ? std::nullopt : hits_of(*this, console(), known, finding.entry);
    rows.cell(hits ? std::to_string(*hits) : std::string());
  }
  entry_rows_.show(std::move(rows));
}

// Only IP numbers and senders have an index in the logs. For anything else there are no numbers: a zero would
// say that nothing was logged.
void LookupPage::show_log() {
  messages.set_target("messages", message_filter(subject_));
  const bool is_counted = subject_.kind == Subject::Kind::address || subject_.kind == Subject::Kind::mail;
  const SubjectLog found = log_of(*this, console(), subject_);
  TableRows rows;
  for (const SubjectLog::Row& one : found.rows) {
    rows.row(one.log + ":" + std::to_string(one.key)).cell(digits_of_time(one.time)).cell(one.verdict);
    rows.cell(translate(one.kind)).cell(one.address).cell(one.sender).cell(one.recipient).cell(one.reason);
  }
  if (is_counted || subject_.kind == Subject::Kind::nothing) {
    log_rows_.show(std::move(rows));
  } else {
    log_rows_.show_problem(translate(
        "Here the logs are searched by IP number and sender only. The page \"Messages\" has the rows."));
  }

  const auto text_of = [&](std::uint64_t number) {
    if (!is_counted) return std::string();
    return std::to_string(number) + (found.complete || number == 0 ? "" : "+");
  };
  TableRows periods;
  const std::string_view names[] = {"24 hours", "7 days", "30 days"};
  for (std::size_t i = 0; i < found.counts.size(); ++i) {
    const SubjectLog::Counts& count = found.counts[i];
    periods.row(std::to_string(i)).cell(translate(names[i]));
    periods.cell(text_of(count.rejected)).cell(text_of(count.allowed)).cell(text_of(count.neutral));
  }
  count_rows_.show(std::move(periods));
}

void LookupPage::choose_entry() {
  if (entries.chosen().empty()) return;
  const KnownList* known = find_list(entries.chosen_cell("list"));
  if (known == nullptr) return;
  list.set_text(translate(known->title));
  list_is_usual_ = false;
  shown_note_ = EntryNote{entries.chosen_cell("comment"), entries.chosen_cell("expires")};
  comment.set_text(shown_note_.comment);
  expires.set_text(shown_note_.expires);
}

void LookupPage::clear_shown_note() {
  const bool untouched = comment.text() == shown_note_.comment && expires.text() == shown_note_.expires;
  if (untouched && !shown_note_.empty()) {
    comment.set_text("");
    expires.set_text("");
  }
  shown_note_ = {};
}

// Each answer is waited for, and events run meanwhile; what is shown belongs to the subject that was asked
// about.
void LookupPage::ask_dns_servers() {
  const Subject asked = subject_;
  TableRows answers;
  if (asked.kind == Subject::Kind::address) ask_address(asked.text, answers);
  if (!asked.domain.empty()) ask_domain(asked.domain, answers);
  if (asked.text != subject_.text) return;
  if (answers.empty()) {
    dns_rows_.show_problem(translate("The DNS has no answer to this."));
  } else {
    dns_rows_.show(std::move(answers));
  }
}

void LookupPage::ask_address(const std::string& address, TableRows& answers) {
  const auto name = host_name_of(dns_client_, address);
  if (name) answers.row("name").cell(translate("Host name")).cell(*name).link("lookup", *name);
  ask_block_lists({.client_address = address, .sender_command = {}}, BlockLists::connect, answers);
}

void LookupPage::ask_domain(const std::string& domain, TableRows& answers) {
  const std::string address = address_of(domain);
  if (!address.empty())
    answers.row("address").cell(translate("Address")).cell(address).link("lookup", address);
  const StringList exchangers = mail_exchangers(domain);
  for (std::size_t i = 0; i < exchangers.size(); ++i) {
    std::string_view host = exchangers[i];
    if (host.ends_with('.')) host.remove_suffix(1);
    answers.row("mx" + std::to_string(i)).cell(translate("Mail exchanger")).cell(host).link("lookup", host);
  }
  std::string spf;
  ask(dns_client_, "get_spf_records " + domain,
      [&](DnsClient& client) { spf = client.get_spf_records(domain); });
  if (!spf.empty()) answers.row("spf").cell(translate("SPF record")).cell(spf);
  ask_block_lists({.client_address = {}, .sender_command = "mail from: adsf@" + domain}, BlockLists::envelope,
                  answers);
}

void LookupPage::ask_block_lists(const MessageContext& context, std::string_view position,
                                 TableRows& answers) {
  auto listing = BlockLists::Listing::none;
  std::string zone;
  bool asked = false;
  const Outcome answered = ask(block_lists_, "look up in the block lists", [&](BlockLists& lists) {
    asked = lists.initmodule(context);
    if (asked) lists.Value(position, listing, zone);
  });
  if (!asked || !answered) return;
  const std::string_view text = listing == BlockLists::Listing::black   ? "listed in %1"
                                : listing == BlockLists::Listing::white ? "white-listed in %1"
                                                                        : "in none of the zones";
  answers.row("zones").cell(translate("DNS block lists")).cell(filled(translate(text), {zone}));
}

const KnownList* LookupPage::named_list() {
  const std::string text(trim(list.text()));
  if (const KnownList* known = find_list(lower(text))) return known;
  const auto lists = known_lists();
  const auto found =
      std::ranges::find_if(lists, [&](const KnownList& one) { return translate(one.title) == text; });
  return found == lists.end() ? nullptr : &*found;
}

// The entries that are chosen, or else what was typed on the list that is named.
std::vector<LookupPage::Target> LookupPage::targets() {
  std::vector<Target> found;
  for (const ListFinding& finding : findings_.entries) {
    if (entries.chosen().find(key_of(*finding.list, finding.entry)) < entries.chosen().size())
      found.push_back({finding.list, finding.entry});
  }
  const KnownList* named = named_list();
  if (!found.empty() || named == nullptr) return found;
  return {{named, entry_for(named->table, subject_of(what.text()).text)}};
}

std::optional<EntryNote> LookupPage::typed_note() {
  EntryNote note{.comment = std::string(trim(comment.text())), .expires = {}};
  const auto day = last_day(expires.text(), console().time_stamp());
  const bool is_long = note.comment.size() > EntryNote::longest_comment;
  if (!day || is_long) {
    complain("%1", is_long ? "The comment is longer than 1000 bytes" : not_a_last_day);
    return {};
  }
  note.expires = *day;
  return note;
}

void LookupPage::add_subject() {
  const KnownList* known = named_list();
  if (subject_of(what.text()).text != subject_.text) clear_shown_note();
  const auto note = typed_note();
  if (!note) return;
  if (known == nullptr) return complain("Not added: %1", "there is no list of this name");
  const std::string text(subject_of(what.text()).text);
  const EntryChange change = add_entry(*this, console(), known->table, text);
  say_addition(*this, known->table, text, change);
  if (!change.done()) return complain("Not added: %1", change.reason);
  // A note that was left behind by an entry that went elsewhere is none of this one's.
  if (change.state == EntryChange::State::added || !note->empty())
    zrl::save_note(*this, known->table, change.entry, *note);
  look_up();
}

void LookupPage::remove_targets() {
  const std::vector<Target> chosen = targets();
  if (chosen.empty()) return complain("Not removed: %1", "there is no list of this name");
  for (const Target& one : chosen) {
    const EntryChange change = remove_entry(*this, console(), one.list->table, one.entry, IfMissing::leave);
    say_removal(*this, console(), one.list->table, one.entry, change);
    if (change.state == EntryChange::State::refused) return complain("Not removed: %1", change.reason);
    if (!change.done()) return complain("Not removed: %1", "it is not on this list");
    if (!note_of(*this, one.list->table, one.entry).empty())
      zrl::save_note(*this, one.list->table, one.entry, {});
  }
  look_up();
}

void LookupPage::save_notes() {
  const auto note = typed_note();
  if (!note) return;
  for (const Target& one : targets()) {
    if (rows_with(*this, one.list->table, one.entry) == 0)
      return complain("Not saved: %1", "it is not on this list");
    zrl::save_note(*this, one.list->table, one.entry, *note);
  }
  look_up();
}

void LookupPage::complain(std::string_view pattern, std::string_view reason) {
  verdict.set_caption(filled(translate(pattern), {translate(reason)}));
  verdict.set_tone(Label::Tone::bad);
}

}  // namespace zrl
