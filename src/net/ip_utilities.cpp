#include "net/ip_utilities.h"

#include <algorithm>

#include "core/text/text.h"

namespace zrl {

namespace {

constexpr int wanted_major = 1;
constexpr int wanted_minor = 1;
constexpr int wanted_sockets = 1;

std::string name_error(int number) {
  return "Windows Sockets error " + std::to_string(number) +
         " has occurred. Unable to successfully get Host Name.\r\n";
}

std::string dotted(const std::vector<std::uint8_t>& address) {
  std::string text;
  for (const std::uint8_t byte : address) text.append(std::to_string(byte)).append(".");
  if (!text.empty()) text.pop_back();
  return text;
}

std::string resolve(SocketPlatform& platform, std::string name, std::string& error_text) {
  if (name.empty()) {
    const std::optional<std::string> own = platform.own_host_name();
    if (!own) {
      error_text = name_error(platform.last_error());
      return {};
    }
    name = text_up_to_zero(*own);
  }
  if (is_dotted_address(name)) return name;
  const std::optional<std::vector<std::uint8_t>> address = platform.host_by_name(name);
  if (!address) {
    error_text = name_error(platform.last_error());
    return {};
  }
  return dotted(*address);
}

}  // namespace

bool start_sockets(SocketPlatform& platform, std::string& error_text) {
  const auto started = platform.start_up(wanted_major, wanted_minor);
  if (!started) {
    error_text = "The 32-bit Windows Socket is not responding.";
    return false;
  }
  if (started->max_sockets < wanted_sockets) {
    error_text =
        "This application requires a minimum of " + std::to_string(wanted_sockets) + " supported sockets.";
    return false;
  }
  const int major = started->major_version;
  const int minor = started->minor_version;
  if (major < wanted_major || (major == wanted_major && minor < wanted_minor)) {
    error_text = "Sockets version " + std::to_string(major) + "." + std::to_string(minor) +
                 " is not supported by 32-bit Windows Sockets.";
    return false;
  }
  return true;
}

bool stop_sockets(SocketPlatform& platform, std::string& error_text) {
  if (platform.clean_up()) return true;
  if (error_text.empty()) error_text = "Socket error occurred in Cleanup.";
  return false;
}

std::string host_address(SocketPlatform& platform, std::string_view name, std::string& error_text) {
  error_text.clear();
  if (!start_sockets(platform, error_text)) return {};
  std::string address = resolve(platform, std::string(trim(name)), error_text);
  stop_sockets(platform, error_text);
  return address;
}

std::string_view text_up_to_zero(std::string_view text) {
  return text.substr(0, text.find('\0'));
}

bool is_dotted_address(std::string_view text) {
  int parts = 0;
  bool more = true;
  while (more) {
    const std::size_t dot = text.find('.');
    const std::string_view part = text.substr(0, dot);
    const bool number = !part.empty() && part.size() <= 3 &&
                        std::all_of(part.begin(), part.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (!number || *to_number(part) > 255 || ++parts > 4) return false;
    more = dot != text.npos;
    if (more) text.remove_prefix(dot + 1);
  }
  return parts == 4;
}

}  // namespace zrl
