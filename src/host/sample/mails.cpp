#include "host/sample/mails.h"

#include "host/sample/mail_forms.h"

namespace zrl::sample {

namespace {

using std::string_view;

constexpr string_view topics[] = {
    "Minutes of the meeting",   "Invoice for September", "Your order",           "Timetable",
    "Question about the offer", "Holiday plan",          "Delivery on Thursday", "Draft of the leaflet"};

string_view domain_of(string_view address) {
  return address.substr(address.rfind('@') + 1);
}

string_view local_part_of(string_view address) {
  return address.substr(0, address.rfind('@'));
}

std::string header_of(const Mail& mail, const Draft& draft) {
  const string_view domain = domain_of(mail.sender);
  const string_view name = draft.sender_name.empty() ? local_part_of(mail.sender) : draft.sender_name;
  const bool encoded = name.starts_with("=?");
  const string_view quote = encoded ? "" : "\"";
  return join({"Received: from mx.",
               domain,
               " ([",
               mail.host,
               "]) by mail.mirvan.example with ESMTP; ",
               mail.moment.header_date(),
               "\r\nMessage-ID: ",
               mail.id,
               "\r\nDate: ",
               mail.moment.header_date(),
               "\r\nFrom: ",
               quote,
               name,
               quote,
               " <",
               mail.sender,
               ">\r\nTo: <",
               mail.recipient,
               ">\r\nSubject: ",
               mail.subject,
               "\r\n",
               draft.fields});
}

Mail write(Generator& random, const Lists& lists, const MailForm& form, Moment moment) {
  Draft draft{.random = random};
  draft.subject = random.pick(topics);
  form.write(draft);

  Mail mail;
  mail.kind = form.kind;
  mail.moment = moment;
  mail.recipient = random.pick_skewed(lists.local_users);
  if (draft.report) {
    mail.sender = join({"mailer-daemon@", domain_of(random.pick_skewed(lists.unlisted_senders))});
  } else {
    mail.sender = random.pick_skewed(draft.spam ? lists.unlisted_senders : lists.white_senders);
    mail.return_path = mail.sender;
  }
  mail.host = random.pick_skewed(draft.spam || draft.report ? lists.neutral_hosts : lists.white_hosts);
  mail.id = join({"<", moment.stamp(), ".", random.digits(1000000), "@", domain_of(mail.sender), ">"});
  if (draft.headless) {
    mail.source = draft.body;
  } else {
    mail.subject = draft.subject;
    mail.header = header_of(mail, draft);
    mail.source = join({mail.header, "\r\n", draft.body});
  }
  return mail;
}

}  // namespace

std::vector<Mail> make_mails(const Lists& lists, std::chrono::local_seconds end, std::size_t count) {
  Generator random(20260915);
  const auto rare = rare_mails();
  std::vector<Mail> result;
  for (const Moment moment : busy_moments(random, count, end)) {
    const std::size_t place = result.size();
    const bool is_rare = place % 15 == 7 && place / 15 < rare.size();
    const MailForm& form = is_rare ? rare[place / 15] : random.pick_skewed(everyday_mails());
    result.push_back(write(random, lists, form, moment));
  }
  return result;
}

}  // namespace zrl::sample
