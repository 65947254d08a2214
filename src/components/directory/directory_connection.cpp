#include "components/directory/directory_connection.h"

#include <algorithm>
#include <utility>

#include <sys/time.h>

#include "core/text/error.h"
#include "core/text/printable.h"
#include "core/text/text.h"
#include "core/text/utf8.h"

namespace zrl::directory {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds tick_interval{20};
constexpr std::size_t longest_text = 300;

timeval to_timeval(milliseconds time) {
  return {static_cast<time_t>(time.count() / 1000), static_cast<suseconds_t>(time.count() % 1000 * 1000)};
}

// Servers without support for paging refuse it with different codes.
bool refuses_pages(int code) {
  return code == LDAP_UNAVAILABLE_CRITICAL_EXTENSION || code == LDAP_UNWILLING_TO_PERFORM ||
         code == LDAP_PROTOCOL_ERROR || code == LDAP_ADMINLIMIT_EXCEEDED;
}

std::string_view without_options(std::string_view attribute) {
  return attribute.substr(0, attribute.find(';'));
}

}  // namespace

void DirectoryEntry::each_value(std::string_view attribute,
                                const std::function<void(std::string_view)>& take) const {
  BerElement* place = nullptr;
  char* name = ldap_first_attribute(ldap_, message_, &place);
  const auto free_place = [](BerElement* element) { ber_free(element, 0); };
  const std::unique_ptr<BerElement, decltype(free_place)> place_owner(place, free_place);
  while (name != nullptr) {
    const std::unique_ptr<char, decltype(&ldap_memfree)> name_owner(name, ldap_memfree);
    if (equals_ignoring_case(without_options(name), attribute)) {
      const std::unique_ptr<berval*, decltype(&ldap_value_free_len)> values(
          ldap_get_values_len(ldap_, message_, name), ldap_value_free_len);
      for (berval** value = values.get(); value != nullptr && *value != nullptr; ++value) {
        take({(*value)->bv_val, (*value)->bv_len});
      }
    }
    name = ldap_next_attribute(ldap_, message_, place);
  }
}

std::string DirectoryEntry::first_value(std::string_view attribute) const {
  std::string result;
  bool found = false;
  each_value(attribute, [&](std::string_view value) {
    if (!std::exchange(found, true)) result = value;
  });
  return result;
}

DirectoryConnection::DirectoryConnection(ConsoleServices& console, const ServerAddress& server,
                                         const Options& options)
    : options_(options),
      url_(server.url),
      is_encrypted_(server.url.starts_with("ldaps:")),
      end_(Clock::now() + options.limits.total),
      watch_([&console] { console.process_events(); }, options.limits.message_bytes) {
  LDAP* ldap = nullptr;
  const int code = ldap_initialize(&ldap, server.url.c_str());
  ldap_.reset(ldap);
  if (code != LDAP_SUCCESS) fail(code);

  const int version = LDAP_VERSION3;
  const timeval connect = to_timeval(options.limits.connect);
  set(LDAP_OPT_PROTOCOL_VERSION, &version);
  set(LDAP_OPT_NETWORK_TIMEOUT, &connect);
  set(LDAP_OPT_REFERRALS, LDAP_OPT_OFF);
  if (!options.certificates.empty()) {
    const int demand = LDAP_OPT_X_TLS_DEMAND;
    const int as_client = 0;
    set(LDAP_OPT_X_TLS_CACERTFILE, options.certificates.c_str());
    set(LDAP_OPT_X_TLS_REQUIRE_CERT, &demand);
    set(LDAP_OPT_X_TLS_NEWCTX, &as_client);
  }
  watch_.attach(ldap);
  sign_in();
}

void DirectoryConnection::set(int option, const void* value) const {
  const int code = ldap_set_option(ldap_.get(), option, value);
  if (code != LDAP_OPT_SUCCESS) fail(LDAP_LOCAL_ERROR, "an option is not supported");
}

// The anonymous bind also opens the connection.
void DirectoryConnection::sign_in() {
  berval nothing = {0, nullptr};
  int id = 0;
  begin_waiting();
  const int code = ldap_sasl_bind(ldap_.get(), "", LDAP_SASL_SIMPLE, &nothing, nullptr, nullptr, &id);
  if (code != LDAP_SUCCESS) fail(code);
  const Answer answer = result_of(next(id));
  if (answer.code != LDAP_SUCCESS) fail(answer.code, answer.text);
  is_signed_in_ = true;
}

void DirectoryConnection::read_root(const std::vector<const char*>& attributes, const Visit& visit) {
  const Answer answer = ask({"", LDAP_SCOPE_BASE, "(objectClass=*)", attributes}, nullptr, visit);
  if (answer.code != LDAP_SUCCESS) fail(answer.code, answer.text);
}

void DirectoryConnection::search(const std::string& base, const char* filter,
                                 const std::vector<const char*>& attributes, const Visit& visit) {
  const Question question{base.c_str(), LDAP_SCOPE_SUBTREE, filter, attributes};
  std::string cookie;
  bool first = true;
  do {
    const Control page = page_control(cookie);
    Answer answer = ask(question, page.get(), visit);
    if (first && refuses_pages(answer.code)) answer = ask(question, nullptr, visit);
    if (answer.code != LDAP_SUCCESS) fail(answer.code, answer.text);
    cookie = next_cookie(answer);
    first = false;
  } while (!cookie.empty());
}

DirectoryConnection::Answer DirectoryConnection::ask(const Question& question, LDAPControl* page,
                                                     const Visit& visit) {
  std::vector<char*> attributes;
  attributes.reserve(question.attributes.size() + 1);
  for (const char* name : question.attributes) attributes.push_back(const_cast<char*>(name));
  attributes.push_back(nullptr);
  LDAPControl* controls[] = {page, nullptr};
  timeval limit = to_timeval(options_.limits.total);
  int id = 0;
  const int code = ldap_search_ext(ldap_.get(), question.base, question.scope, question.filter,
                                   attributes.data(), 0, controls, nullptr, &limit, LDAP_NO_LIMIT, &id);
  if (code != LDAP_SUCCESS) fail(code);
  for (;;) {
    Message message = next(id);
    const int type = ldap_msgtype(message.get());
    if (type == LDAP_RES_SEARCH_ENTRY) {
      visit(DirectoryEntry(ldap_.get(), message.get()));
    } else if (type == LDAP_RES_SEARCH_RESULT) {
      return result_of(std::move(message));
    }  // others are references to other servers, which are not followed
  }
}

void DirectoryConnection::begin_waiting() {
  watch_.set_deadline(std::min(end_, Clock::now() + options_.limits.answer));
}

// The next part of an answer.
DirectoryConnection::Message DirectoryConnection::next(int id) {
  begin_waiting();
  for (;;) {
    timeval patience = to_timeval(tick_interval);
    LDAPMessage* message = nullptr;
    const int type = ldap_result(ldap_.get(), id, LDAP_MSG_ONE, &patience, &message);
    Message result(message);
    if (type < 0) {
      int code = LDAP_SERVER_DOWN;
      ldap_get_option(ldap_.get(), LDAP_OPT_RESULT_CODE, &code);
      fail(code);
    }
    watch_.serve();
    if (watch_.is_late()) fail(LDAP_TIMEOUT);
    if (type > 0) return result;
  }
}

DirectoryConnection::Answer DirectoryConnection::result_of(Message message) const {
  int code = LDAP_PROTOCOL_ERROR;
  char* text = nullptr;
  const int parsed =
      ldap_parse_result(ldap_.get(), message.get(), &code, nullptr, &text, nullptr, nullptr, 0);
  const std::unique_ptr<char, decltype(&ldap_memfree)> owner(text, ldap_memfree);
  if (parsed != LDAP_SUCCESS) fail(parsed);
  return {code, text == nullptr ? "" : text, std::move(message)};
}

// Not marked critical, so that a server without paging sends everything at once.
DirectoryConnection::Control DirectoryConnection::page_control(const std::string& cookie) const {
  berval value = {cookie.size(), const_cast<char*>(cookie.data())};
  LDAPControl* control = nullptr;
  const int code = ldap_create_page_control(ldap_.get(), options_.limits.page_size,
                                            cookie.empty() ? nullptr : &value, 0, &control);
  if (code != LDAP_SUCCESS) fail(code);
  return Control(control);
}

// Empty after the last page.
std::string DirectoryConnection::next_cookie(const Answer& answer) const {
  LDAPControl** controls = nullptr;
  const int code =
      ldap_parse_result(ldap_.get(), answer.message.get(), nullptr, nullptr, nullptr, nullptr, &controls, 0);
  const std::unique_ptr<LDAPControl*, Release> owner(controls);
  if (code != LDAP_SUCCESS) fail(code);
  LDAPControl* page = ldap_control_find(LDAP_CONTROL_PAGEDRESULTS, controls, nullptr);
  if (page == nullptr) return {};
  ber_int_t estimate = 0;
  berval cookie = {0, nullptr};
  const int parsed = ldap_parse_pageresponse_control(ldap_.get(), page, &estimate, &cookie);
  const std::unique_ptr<char, decltype(&ber_memfree)> cookie_owner(cookie.bv_val, ber_memfree);
  if (parsed != LDAP_SUCCESS) fail(parsed);
  return cookie.bv_val == nullptr ? std::string() : std::string(cookie.bv_val, cookie.bv_len);
}

// The library says of every failure of TLS that the server cannot be contacted, and of a certificate that it
// refuses itself nothing more.
std::string DirectoryConnection::description_of(int code) const {
  const bool lost = code == LDAP_SERVER_DOWN || code == LDAP_CONNECT_ERROR;
  if (lost && is_encrypted_ && watch_.has_connected() && !is_signed_in_) {
    char* said = nullptr;
    ldap_get_option(ldap_.get(), LDAP_OPT_DIAGNOSTIC_MESSAGE, &said);
    const std::unique_ptr<char, decltype(&ldap_memfree)> owner(said, ldap_memfree);
    const std::string_view reason = said == nullptr ? "" : said;
    if (!reason.empty() && !reason.starts_with('(')) return "TLS failed: " + printable(reason);
    return "TLS failed: its certificate was refused; it comes from no authority that this system trusts, "
           "is not valid at this time, or is another host's";
  }
  std::string description = ldap_err2string(code);
  if (code == LDAP_SIZELIMIT_EXCEEDED) {
    description += " (the server's limit for all pages of an answer together, such as slapd's size.prtotal)";
  }
  return description;
}

void DirectoryConnection::fail(int code, const std::string& text) const {
  watch_.rethrow();
  if (watch_.is_late()) code = LDAP_TIMEOUT;
  std::string message = "the directory server " + url_ + ": " + description_of(code);
  if (!text.empty()) message += ": " + printable(cut_between_characters(text, longest_text));
  throw Error(code, message);
}

}  // namespace zrl::directory
