#pragma once

#include <array>
#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>

namespace zrl::web {

// Cookies by which a browser proves that it signed in to an account before. They grant nothing but a lane of
// its own in the throttle. The text is `ID.EXPIRY.MAC`: a random number, seconds since 1970, and a keyed hash
// (BLAKE2b) of both with the account, all but the expiry in hexadecimal digits.
class DeviceCookies {
 public:
  using Clock = std::chrono::system_clock;

  static constexpr std::string_view name = "zrl_device";
  static constexpr std::chrono::seconds valid_for = std::chrono::hours(24 * 180);

  // The key is in the file, which is made if it does not exist; without it, all cookies are void. Raises
  // zrl::Error if it cannot be read or made, and std::runtime_error if it holds no key.
  explicit DeviceCookies(const std::filesystem::path& key_file);

  // For a browser that has signed in to the account; `device` is what it was known by, or empty.
  std::string issue(std::string_view account, std::string_view device, Clock::time_point now) const;

  // What the browser is known by, which is the same in all its cookies; empty unless the cookie is ours, was
  // issued for this account and has not expired.
  std::string device_of(std::string_view cookie, std::string_view account, Clock::time_point now) const;

 private:
  std::string mac_of(std::string_view signed_text, std::string_view account) const;

  std::array<unsigned char, 32> key_{};
};

}  // namespace zrl::web
