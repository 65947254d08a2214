#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/contracts/mail_message.h"

// Mail messages: read with GMime, sent with libcurl.
namespace zrl {

struct MailLimits {
  std::chrono::milliseconds connect{15'000};
  std::chrono::milliseconds reply{60'000};  // to one command; and to the mail
  std::chrono::milliseconds total{120'000};
};

struct MailSettings {
  // Returns after this time, the event loop served meanwhile; what it raises ends a send(). If it is
  // empty, send() blocks.
  std::function<void(std::chrono::milliseconds)> wait;
  // The IP addresses of a host. The system is asked if it is empty or yields none; what it raises ends
  // the send().
  std::function<std::vector<std::string>(const std::string& host)> find_addresses;
  MailLimits limits;
};

std::shared_ptr<MailMessage> make_mail_message(MailSettings settings);

}  // namespace zrl
