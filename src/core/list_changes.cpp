#include "core/list_changes.h"

#include <algorithm>
#include <exception>

#include "core/text/letter_case.h"
#include "core/text/list_entry.h"
#include "core/text/text.h"

namespace zrl {

namespace {

using Verb = EntryStep::Verb;
using When = EntryStep::When;

constexpr EntryStep raise(std::string_view flag) {
  return {.verb = Verb::raise, .flag = flag};
}
constexpr EntryStep call(EntryStep::Operation operation) {
  return {.verb = Verb::call, .operation = operation};
}
constexpr EntryStep take_lower_off(const ListTable& list) {
  return {Verb::take_lower_off, &list};
}
constexpr EntryStep take_domain_off(const ListTable& list) {
  return {Verb::take_domain_off, &list};
}
constexpr EntryStep purge(const ListTable& list) {
  return {Verb::purge, &list};
}

// How a text becomes an entry.
enum class Form : std::uint8_t { typed, trimmed, escaped, lowered, network };

// Which texts a list takes.
enum class Takes : std::uint8_t {
  anything,
  typed,  // anything but an empty field; blanks count as typed
  text,
  address,
  network,
  mail,
  domain,        // no address of a mailbox
  local_domain,  // no IP number
};

struct Act {
  Form form;
  Takes takes;
  std::span<const EntryStep> steps;
};

struct Rule {
  const ListTable& list;
  Act add;
  Act remove;
};

// The steps, in the order in which they are executed and recorded. They differ from list to list on purpose:
// who deletes first, which flags are raised and when, what else leaves which list.
namespace steps {

constexpr EntryStep add_black_domain[] = {
    raise("reloadblack"),
    take_off(list::black_domains),
    take_off(list::white_domains),
    put_on(list::black_domains).only(When::always),  // records the refusal of an empty text
    raise("reloadwhite"),
    take_off(list::white_domains),
    take_off_any(list::white_domains),
};
constexpr EntryStep add_white_domain[] = {
    raise("reloadwhite"),
    take_off(list::white_domains),
    take_off(list::black_domains),
    put_on(list::white_domains).only(When::always),
    raise("reloadblack"),
    take_off(list::black_domains),
    take_off_any(list::black_domains),
};
constexpr EntryStep remove_black_domain[] = {raise("reloadblack"), take_off(list::black_domains),
                                             take_off_any(list::black_domains)};
constexpr EntryStep remove_white_domain[] = {raise("reloadwhite"), take_off(list::white_domains),
                                             take_off_any(list::white_domains)};

constexpr EntryStep add_local_domain[] = {take_off(list::local_domains), put_on(list::local_domains)};
constexpr EntryStep add_local_address[] = {take_off(list::local_addresses), put_on(list::local_addresses)};
constexpr EntryStep remove_local[] = {take_off(list::local_addresses), take_off(list::local_domains)};

constexpr EntryStep add_exempt_domain[] = {put_on(list::exempt_domains)};
constexpr EntryStep remove_exempt_domain[] = {take_off(list::exempt_domains)};
constexpr EntryStep add_exempt_mail[] = {put_on(list::exempt_mails)};
constexpr EntryStep remove_exempt_mail[] = {take_off(list::exempt_mails)};

constexpr EntryStep add_black_address[] = {call(&DatabaseClient::add_to_blackhost)};
constexpr EntryStep add_white_address[] = {call(&DatabaseClient::add_to_whitehost)};
constexpr EntryStep remove_address[] = {call(&DatabaseClient::remove_from_iplist)};

constexpr EntryStep add_black_subnet[] = {put_on(list::black_subnets), take_off(list::white_subnets)};
constexpr EntryStep add_white_subnet[] = {put_on(list::white_subnets), take_off(list::black_subnets)};
constexpr EntryStep remove_subnet[] = {take_off(list::black_subnets), take_off(list::white_subnets)};

// The flags are raised even if nothing was stored.
constexpr EntryStep add_black_mail[] = {
    put_on(list::black_mails),
    take_off(list::white_mails),
    take_domain_off(list::white_domains),
    raise("reloadblack").only(When::always),
    raise("reloadauto").only(When::always),
};
constexpr EntryStep add_white_mail[] = {
    put_on(list::white_mails),
    take_off(list::black_mails),
    take_domain_off(list::black_domains),
    raise("reloadwhite").only(When::always),
    raise("reloadauto").only(When::always),
};
constexpr EntryStep remove_mail[] = {take_lower_off(list::black_mails), take_lower_off(list::white_mails),
                                     raise("reloadwhite"), raise("reloadblack"), raise("reloadauto")};

// The flag also makes the proxy read the local users again. A user who is added twice is stored twice, the
// domain once; it stays local when the user is removed.
constexpr EntryStep add_user[] = {
    raise("reloadblack").only(When::storable),
    put_on(list::local_users),
    EntryStep{Verb::move_domain, &list::local_domains}.only(When::stored),
};
constexpr EntryStep remove_user[] = {raise("reloadblack"), take_off(list::local_users)};

constexpr EntryStep add_subject_keyword[] = {call(&DatabaseClient::add_to_swords),
                                             take_off(list::white_subjects), purge(list::white_subjects)};
constexpr EntryStep add_body_keyword[] = {call(&DatabaseClient::add_to_words)};
constexpr EntryStep add_white_subject[] = {take_off(list::white_subjects), put_on(list::white_subjects),
                                           take_off(list::subject_keywords), purge(list::subject_keywords)};
constexpr EntryStep remove_subject_keyword[] = {take_off(list::subject_keywords),
                                                purge(list::subject_keywords)};
constexpr EntryStep remove_body_keyword[] = {take_off(list::body_keywords), purge(list::body_keywords)};
constexpr EntryStep remove_white_subject[] = {take_off(list::white_subjects), purge(list::white_subjects)};

constexpr EntryStep add_black_zone[] = {take_off(list::black_zones), put_on(list::black_zones)};
constexpr EntryStep remove_black_zone[] = {take_off(list::black_zones)};
constexpr EntryStep add_white_zone[] = {take_off(list::white_zones), put_on(list::white_zones)};
constexpr EntryStep remove_white_zone[] = {take_off(list::white_zones)};
constexpr EntryStep add_uri_zone[] = {take_off(list::uri_zones), put_on(list::uri_zones)};
constexpr EntryStep remove_uri_zone[] = {take_off(list::uri_zones)};

constexpr EntryStep add_file[] = {take_off(list::file_names), put_on(list::file_names)};
// Extensions are listed without their dot; a text with one is only taken off the list.
constexpr EntryStep add_extension[] = {take_off(list::extensions),
                                       put_on(list::extensions).only(When::without_dot)};
constexpr EntryStep remove_file[] = {take_lower_off(list::file_names), take_lower_off(list::extensions)};

}  // namespace steps

constexpr Rule rules[] = {
    {list::black_domains,
     {Form::escaped, Takes::text, steps::add_black_domain},
     {Form::trimmed, Takes::anything, steps::remove_black_domain}},
    {list::white_domains,
     {Form::escaped, Takes::text, steps::add_white_domain},
     {Form::trimmed, Takes::anything, steps::remove_white_domain}},
    {list::local_domains,
     {Form::trimmed, Takes::local_domain, steps::add_local_domain},
     {Form::trimmed, Takes::text, steps::remove_local}},
    {list::exempt_domains,
     {Form::trimmed, Takes::domain, steps::add_exempt_domain},
     {Form::trimmed, Takes::typed, steps::remove_exempt_domain}},
    {list::black_addresses,
     {Form::typed, Takes::address, steps::add_black_address},
     {Form::typed, Takes::address, steps::remove_address}},
    {list::white_addresses,
     {Form::typed, Takes::address, steps::add_white_address},
     {Form::typed, Takes::address, steps::remove_address}},
    {list::local_addresses,
     {Form::trimmed, Takes::address, steps::add_local_address},
     {Form::trimmed, Takes::text, steps::remove_local}},
    {list::black_subnets,
     {Form::network, Takes::network, steps::add_black_subnet},
     {Form::typed, Takes::anything, steps::remove_subnet}},
    {list::white_subnets,
     {Form::network, Takes::network, steps::add_white_subnet},
     {Form::typed, Takes::anything, steps::remove_subnet}},
    {list::black_mails,
     {Form::lowered, Takes::mail, steps::add_black_mail},
     {Form::trimmed, Takes::anything, steps::remove_mail}},
    {list::white_mails,
     {Form::lowered, Takes::mail, steps::add_white_mail},
     {Form::trimmed, Takes::anything, steps::remove_mail}},
    {list::exempt_mails,
     {Form::trimmed, Takes::mail, steps::add_exempt_mail},
     {Form::trimmed, Takes::mail, steps::remove_exempt_mail}},
    {list::local_users,
     {Form::lowered, Takes::mail, steps::add_user},
     {Form::trimmed, Takes::mail, steps::remove_user}},
    {list::subject_keywords,
     {Form::escaped, Takes::typed, steps::add_subject_keyword},
     {Form::trimmed, Takes::anything, steps::remove_subject_keyword}},
    {list::body_keywords,
     {Form::escaped, Takes::anything, steps::add_body_keyword},
     {Form::trimmed, Takes::anything, steps::remove_body_keyword}},
    {list::white_subjects,
     {Form::escaped, Takes::anything, steps::add_white_subject},
     {Form::trimmed, Takes::anything, steps::remove_white_subject}},
    {list::black_zones,
     {Form::trimmed, Takes::anything, steps::add_black_zone},
     {Form::trimmed, Takes::anything, steps::remove_black_zone}},
    {list::white_zones,
     {Form::trimmed, Takes::anything, steps::add_white_zone},
     {Form::trimmed, Takes::anything, steps::remove_white_zone}},
    {list::uri_zones,
     {Form::trimmed, Takes::anything, steps::add_uri_zone},
     {Form::trimmed, Takes::anything, steps::remove_uri_zone}},
    {list::file_names,
     {Form::lowered, Takes::text, steps::add_file},
     {Form::typed, Takes::anything, steps::remove_file}},
    {list::extensions,
     {Form::lowered, Takes::text, steps::add_extension},
     {Form::typed, Takes::anything, steps::remove_file}},
};

const Rule* rule_of(const ListTable& list) {
  const auto found = std::ranges::find(rules, list.name, [](const Rule& rule) { return rule.list.name; });
  return found == std::end(rules) ? nullptr : found;
}

bool has_at(std::string_view text) {
  return text.find('@') != text.npos;
}

std::string in_form(Form form, std::string_view text) {
  switch (form) {
    case Form::typed:
      return std::string(text);
    case Form::trimmed:
      return std::string(trim(text));
    case Form::escaped:
      return escape_quotes(trim(text));
    case Form::lowered:
      return lower_unicode(trim(text));
    case Form::network:
      return network_entry(text);
  }
  return {};
}

// Why the text is not taken, of which the entry was made; empty if it is.
std::string_view refusal(Takes takes, std::string_view text, std::string_view stored) {
  constexpr std::string_view empty = "nothing is stored: the entry is empty";
  const std::string_view entry = trim(text);
  switch (takes) {
    case Takes::anything:
      return {};
    case Takes::typed:
      return text.empty() ? empty : std::string_view();
    case Takes::text:
      return entry.empty() ? empty : std::string_view();
    case Takes::address:
      return is_ip_address(stored) ? std::string_view() : not_an_ip_number;
    case Takes::network:
      return network_entry(text).empty() ? not_a_network : std::string_view();
    case Takes::mail:
      return has_at(text) ? std::string_view() : no_mail_address;
    case Takes::domain:
      if (has_at(text)) return "An e-mail address belongs on the list of exempt e-mail addresses";
      return entry.empty() ? empty : std::string_view();
    case Takes::local_domain:
      if (is_ip_address(entry)) return "An IP number belongs on the list of local IP numbers";
      return entry.empty() ? empty : std::string_view();
  }
  return {};
}

// One change, while its steps are executed.
class Execution {
 public:
  Execution(DatabaseClient& client, std::string_view entry, bool accepted)
      : client_(client), entry_(entry), accepted_(accepted) {}

  void run(std::span<const EntryStep> steps) {
    for (const EntryStep& step : steps) {
      if (applies(step)) execute(step);
    }
  }

  // Whether every step that puts the entry on a list worked.
  bool stored() const { return stored_; }
  // Why one of them was not even tried; empty if all were.
  std::string_view refusal() const { return refusal_; }

 private:
  bool applies(const EntryStep& step) {
    switch (step.when) {
      case When::always:
        return true;
      case When::stored:
        return accepted_ && stored_;
      case When::storable:
        return accepted_ && insert_into(list::local_users, entry_).fault().empty();
      case When::without_dot:
        if (entry_.find('.') == entry_.npos) return accepted_;
        refusal_ = dotted_extension;
        stored_ = false;
        return false;
      case When::accepted:
        break;
    }
    return accepted_;
  }

  void execute(const EntryStep& step) {
    switch (step.verb) {
      case Verb::put_on:
        stored_ = client_.execute(insert_into(*step.list, entry_)) && stored_;
        break;
      case Verb::take_off:
        client_.execute(delete_from(*step.list, entry_));
        break;
      case Verb::take_off_any:
        client_.execute(delete_from(*step.list, "@*" + std::string(entry_)));
        break;
      case Verb::take_lower_off:
        take_lower_off(*step.list);
        break;
      case Verb::take_domain_off:
        if (const std::string domain = domain_of_address(entry_); !domain.empty())
          client_.execute(delete_from(*step.list, domain));
        break;
      case Verb::move_domain:
        if (const std::string domain = domain_of_address(entry_); !domain.empty()) {
          client_.execute(delete_from(*step.list, domain));
          client_.execute(insert_into(*step.list, domain));
        }
        break;
      case Verb::purge:
        purge(*step.list);
        break;
      case Verb::call:
        stored_ = (client_.*step.operation)(entry_) && stored_;
        break;
      case Verb::raise:
        client_.raise_flag(step.flag);
        break;
    }
  }

  // An entry that came from a file may have capital letters; the database takes only those of ASCII for
  // their small ones, so a text with others is also removed as it is.
  void take_lower_off(const ListTable& list) {
    const std::string small = lower_unicode(entry_);
    client_.execute(delete_from(list, small));
    if (lower(entry_) != small) client_.execute(delete_from(list, entry_));
  }

  // The second statement never selects a row; it is kept because the sequence of statements is fixed.
  void purge(const ListTable& list) {
    client_.execute(delete_from(list, ""));
    client_.execute("DELETE FROM " + list.table + " where entry=NULL");
  }

  DatabaseClient& client_;
  std::string_view entry_;
  bool accepted_;
  bool stored_ = true;
  std::string_view refusal_;
};

// The lists that the removal takes the entry off.
std::vector<const ListTable*> lists_of(const Rule& rule) {
  std::vector<const ListTable*> lists;
  const auto add = [&lists](const ListTable& list) {
    const auto same = [&list](const ListTable* known) { return known->name == list.name; };
    if (std::ranges::none_of(lists, same)) lists.push_back(&list);
  };
  for (const EntryStep& step : rule.remove.steps) {
    if (step.verb == Verb::call) {
      add(list::black_addresses);
      add(list::white_addresses);
    } else if (step.list != nullptr) {
      add(*step.list);
    }
  }
  return lists;
}

// The rows of one of these lists that it removes.
std::uint64_t rows_to_remove(DatabaseClient& client, const Rule& rule, const ListTable& list,
                             std::string_view entry) {
  std::uint64_t rows = 0;
  for (const EntryStep& step : rule.remove.steps) {
    if (step.verb == Verb::call) rows += rows_with(client, list, entry);
    if (step.list == nullptr || step.list->name != list.name) continue;
    if (step.verb == Verb::take_off) rows += rows_with(client, list, entry);
    if (step.verb == Verb::take_off_any) rows += rows_with(client, list, "@*" + std::string(entry));
    if (step.verb == Verb::take_lower_off) {
      const std::string small = lower_unicode(entry);
      rows += rows_with(client, list, small);
      if (lower(entry) != small) rows += rows_with(client, list, entry);
    }
  }
  return rows;
}

// Of the step that failed last.
std::string last_problem(Console& console) {
  const ActivityRecord& record = console.activity();
  for (std::uint64_t i = record.total(); i > record.first(); --i) {
    if (!record[i - 1].ok) return std::string(record[i - 1].error);
  }
  return {};
}

EntryChange refused(std::string_view entry, std::string_view reason) {
  return {.entry = std::string(entry), .reason = std::string(reason)};
}

// What is said of an entry that its list does not take; empty for the others.
std::string_view sentence_of(const EntryChange& change) {
  constexpr std::pair<std::string_view, std::string_view> sentences[] = {
      {not_an_ip_number, said::no_ip_number},
      {not_a_network, "Nothing stored: %1 is no network"},
      {no_mail_address, said::address_needs_at},
      {dotted_extension, "Nothing stored: an extension is listed without its dot"},
  };
  if (change.state != EntryChange::State::refused) return {};
  for (const auto& [reason, sentence] : sentences) {
    if (reason == change.reason) return sentence;
  }
  return {};
}

constexpr std::string_view not_a_list = "there is no list of this name";

}  // namespace

bool run_entry_steps(DatabaseClient& client, std::span<const EntryStep> steps, std::string_view entry) {
  Execution execution(client, entry, true);
  execution.run(steps);
  return execution.stored();
}

EntryChange add_entry(DatabaseClient& client, Console& console, const ListTable& list,
                      std::string_view text) {
  const Rule* rule = rule_of(list);
  if (rule == nullptr) return refused(text, not_a_list);
  const std::string entry = in_form(rule->add.form, text);
  const std::string_view why_not = refusal(rule->add.takes, text, entry);
  const bool was_there = why_not.empty() && rows_with(client, list, entry) > 0;
  Execution execution(client, entry, why_not.empty());
  execution.run(rule->add.steps);
  if (!why_not.empty()) return refused(entry, why_not);
  if (!execution.refusal().empty()) return refused(entry, execution.refusal());
  if (!execution.stored()) return refused(entry, last_problem(console));
  return {was_there ? EntryChange::State::already : EntryChange::State::added, entry};
}

EntryChange remove_entry(DatabaseClient& client, Console& console, const ListTable& list,
                         std::string_view text, IfMissing if_missing) {
  const Rule* rule = rule_of(list);
  if (rule == nullptr) return refused(text, not_a_list);
  const std::string entry = in_form(rule->remove.form, text);
  const std::string_view why_not = refusal(rule->remove.takes, text, entry);
  if (!why_not.empty()) return refused(entry, why_not);
  EntryChange change{.state = EntryChange::State::missing, .entry = entry, .searched = lists_of(*rule)};
  std::uint64_t rows = 0;
  for (const ListTable* searched : change.searched) {
    const std::uint64_t found = rows_to_remove(client, *rule, *searched, entry);
    if (found > 0) change.left.push_back(searched);
    if (searched->name == list.name) rows = found;
  }
  if (rows == 0 && if_missing == IfMissing::leave) return change;
  const std::uint64_t failures = console.activity().failures();
  Execution execution(client, entry, true);
  execution.run(rule->remove.steps);
  if (rows == 0) return change;
  if (console.activity().failures() > failures) return refused(entry, last_problem(console));
  change.state = EntryChange::State::removed;
  change.removed = rows;
  return change;
}

void say_addition(const Steps& steps, const ListTable& list, std::string_view text,
                  const EntryChange& change) {
  if (trim(text).empty()) {
    steps.say_nothing(said::no_entry_to_add);
  } else if (const std::string_view sentence = sentence_of(change); !sentence.empty()) {
    steps.say_nothing(sentence, {text});
  } else {
    steps.say_added(change.entry, list, change.done());
  }
}

void say_removal(const Steps& steps, Console& console, const ListTable& list, std::string_view text,
                 const EntryChange& change) {
  if (trim(text).empty()) {
    steps.say_nothing(said::no_entry_to_remove);
  } else if (const std::string_view sentence = sentence_of(change); !sentence.empty()) {
    steps.say_nothing(sentence, {text});
  } else if (change.left.empty()) {
    const std::string words = steps.list_words(list);
    const bool single = change.searched.size() == 1;
    // Not said to be nothing: if a step failed, that is told.
    console.acts().say(single ? said::not_on_list : said::on_neither_list, {change.entry, words},
                       SentenceTone::neutral);
  } else {
    for (const ListTable* left : change.left)
      steps.say(said::removed, {change.entry, steps.list_words(*left)});
  }
}

std::string entry_for(const ListTable& list, std::string_view text) {
  const Rule* rule = rule_of(list);
  return rule == nullptr ? std::string(text) : in_form(rule->add.form, text);
}

std::uint64_t rows_with(DatabaseClient& client, const ListTable& list, std::string_view entry) {
  const Statement select =
      "select " + list.column + " from " + list.table + " where " + list.column + "='" + value(entry) + "'";
  if (!client.database || !client.conn || !select.fault().empty()) return 0;
  try {
    return static_cast<std::uint64_t>(client.database->count_value(select, client.conn));
  } catch (const std::exception&) {
    return 0;  // the statements that follow meet the same fault, and record it
  }
}

std::string domain_of_address(std::string_view address) {
  const std::size_t at = address.find('@');
  if (at == address.npos) return {};
  const std::string_view domain = address.substr(at + 1);
  const bool valid = domain.find('@') == domain.npos && domain.find('.') != domain.npos;
  return valid ? lower_unicode(domain) : std::string();
}

}  // namespace zrl
