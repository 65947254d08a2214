#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "host/sample/lists.h"

namespace zrl::sample {

// An archived mail, as the proxy took it.
struct Mail {
  std::string_view kind;  // what it is an example of
  Moment moment;
  std::string id;
  std::string subject;  // as it stands in the header: encoded words and all
  std::string sender;
  std::string recipient;
  std::string return_path;  // empty for a report of a failed delivery
  std::string host;
  std::string header;
  std::string source;  // header, empty line, body; any bytes
};

// Of the 30 days up to `end`, in the order of their times.
std::vector<Mail> make_mails(const Lists& lists, std::chrono::local_seconds end, std::size_t count = 300);

}  // namespace zrl::sample
