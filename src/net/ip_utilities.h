#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The address of a host, with the product's established checks and error texts. The texts are about the
// sockets of another platform; they are kept unchanged because users know them.
namespace zrl {

// What these functions need of the platform. Tests put a double in its place.
class SocketPlatform {
 public:
  struct StartUp {
    int major_version;
    int minor_version;
    long max_sockets;
  };

  virtual ~SocketPlatform() = default;

  // Asks for sockets of this version; nothing if there are none. The result says which version there is.
  virtual std::optional<StartUp> start_up(int major_version, int minor_version) = 0;
  virtual bool clean_up() = 0;

  // The error number of the last failure of an operation below.
  virtual int last_error() const = 0;
  virtual std::optional<std::string> own_host_name() = 0;
  // The bytes of the host's first IPv4 address.
  virtual std::optional<std::vector<std::uint8_t>> host_by_name(const std::string& name) = 0;
};

// Both return false and set `error_text` if they fail; stop_sockets() keeps a text that is already there.
bool start_sockets(SocketPlatform& platform, std::string& error_text);
bool stop_sockets(SocketPlatform& platform, std::string& error_text);

// The first IPv4 address of the host, dotted; of this machine if the name is blank. A dotted address
// is returned unchanged. Empty if it fails; `error_text` is then the reason, and empty otherwise. May serve
// the event loop, if the platform's host_by_name() does.
std::string host_address(SocketPlatform& platform, std::string_view name, std::string& error_text);

// The text before its first zero byte.
std::string_view text_up_to_zero(std::string_view text);

// Four numbers from 0 to 255 of one to three digits, with dots between them.
bool is_dotted_address(std::string_view text);

}  // namespace zrl
