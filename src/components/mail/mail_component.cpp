#include <atomic>
#include <future>

#include <arpa/inet.h>

#include "components/mail/mail.h"
#include "components/mail/mail_reader.h"
#include "components/mail/mail_writer.h"
#include "components/mail/smtp_delivery.h"
#include "core/contracts/name_lookup.h"
#include "core/text/error.h"
#include "core/text/mail_address.h"
#include "core/text/printable.h"

namespace zrl::mail {

namespace {

constexpr std::chrono::milliseconds poll_interval{20};

[[noreturn]] void refuse(const std::string& why) {
  throw Error(error_number::invalid_call, why);
}

std::vector<Mailbox> mailboxes(const std::string& text, const std::string& what) {
  MailboxList list = parse_mailboxes(text);
  if (list.wrong) refuse(what + " is no mail address: " + printable(*list.wrong));
  if (list.mailboxes.empty()) refuse(what + " is missing");
  return std::move(list.mailboxes);
}

// The system's look-up does not know the servers to which the console's look-up is restricted.
std::vector<std::string> addresses_where_servers_are_named(ConsoleServices& console,
                                                           const std::string& host) {
  in6_addr bytes;
  const bool is_address = host.starts_with('[') || ::inet_pton(AF_INET, host.c_str(), &bytes) == 1 ||
                          ::inet_pton(AF_INET6, host.c_str(), &bytes) == 1;
  if (is_address || !console.names().asks_only_servers()) return {};
  return {console.names().host_address(host)};
}

class MailComponent : public MailMessage {
 public:
  MailComponent(ConsoleServices& console, Limits limits) : console_(console), limits_(limits) {}

  Mail parse(std::string_view source) override { return read_mail(source); }

  void send(const Mail& mail, const MailServer& server) override {
    cancelled_ = false;
    const SmtpDelivery delivery = prepare(mail, server);
    // The library blocks while it waits for some of the replies, so it has a thread of its own.
    std::future<void> delivered = std::async(std::launch::async, [&] { deliver(delivery, cancelled_); });
    try {
      while (delivered.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready) {
        console_.wait(poll_interval);
      }
    } catch (...) {
      cancelled_ = true;
      throw;
    }
    delivered.get();
  }

  void cancel() override { cancelled_ = true; }

 private:
  SmtpDelivery prepare(const Mail& mail, const MailServer& server) const {
    const std::vector<Mailbox> senders = mailboxes(mail.sender, "the sender");
    if (senders.size() > 1) refuse("there is more than one sender");
    const std::vector<Mailbox> recipients = mailboxes(mail.recipient, "the recipient");
    if (recipients.size() > most_recipients) refuse("there are too many recipients");
    if (!is_mail_host(server.host)) refuse("this is no host: " + printable(server.host));
    if (server.port == 0) refuse("the port is missing");
    if (mail.subject.size() > longest_subject) refuse("the subject is too long");
    if (mail.text_body.size() > longest_body || mail.html_body.size() > longest_body) {
      refuse("the mail is too long");
    }
    SmtpDelivery delivery;
    delivery.server = server;
    delivery.addresses = addresses_where_servers_are_named(console_, server.host);
    delivery.sender = senders.front().address;
    for (const Mailbox& recipient : recipients) delivery.recipients.push_back(recipient.address);
    delivery.source = write_mail(mail, senders.front(), recipients);
    delivery.limits = limits_;
    return delivery;
  }

  ConsoleServices& console_;
  Limits limits_;
  std::atomic<bool> cancelled_ = false;
};

}  // namespace

std::shared_ptr<MailMessage> make(ConsoleServices& console, Limits limits) {
  return std::make_shared<MailComponent>(console, limits);
}

}  // namespace zrl::mail
