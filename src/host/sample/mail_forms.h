#pragma once

#include <span>
#include <string>
#include <string_view>

#include "host/sample/generator.h"

namespace zrl::sample {

// A mail under construction. Header values are encoded as in transport.
struct Draft {
  Generator& random;
  std::string sender_name{};
  std::string subject{};
  std::string fields{};  // the fields about the content, each ended by CR LF
  std::string body{};
  bool spam = false;
  bool report = false;    // of a failed delivery: the return path is empty
  bool headless = false;  // the source is the body and nothing else
};

struct MailForm {
  std::string_view kind;
  void (*write)(Draft&);
};

// Ordinary mails, the most frequent ones first.
std::span<const MailForm> everyday_mails();
// Rare mails that a console must survive: broken, huge or hostile.
std::span<const MailForm> rare_mails();

}  // namespace zrl::sample
