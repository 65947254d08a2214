#pragma once

#include <span>
#include <string>
#include <string_view>

#include "host/sample/generator.h"

namespace zrl::sample {

// A mail while it is written. Header values are as they go over the wire.
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

// What comes every day, the frequent first.
std::span<const MailForm> everyday_mails();
// What comes once in a while and must not upset anybody: broken, huge or hostile.
std::span<const MailForm> rare_mails();

}  // namespace zrl::sample
