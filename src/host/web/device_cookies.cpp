#include "host/web/device_cookies.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

#include <sodium.h>

#include "core/text/files.h"

namespace zrl::web {

namespace {

constexpr std::size_t id_bytes = 16;
constexpr std::size_t longest_cookie = 256;

std::string hex(const unsigned char* bytes, std::size_t size) {
  std::string text(2 * size + 1, '\0');
  ::sodium_bin2hex(text.data(), text.size(), bytes, size);
  text.pop_back();
  return text;
}

std::string random_id() {
  std::array<unsigned char, id_bytes> bytes{};
  ::randombytes_buf(bytes.data(), bytes.size());
  return hex(bytes.data(), bytes.size());
}

std::int64_t seconds_of(DeviceCookies::Clock::time_point time) {
  return std::chrono::duration_cast<std::chrono::seconds>(time.time_since_epoch()).count();
}

}  // namespace

DeviceCookies::DeviceCookies(const std::filesystem::path& key_file) {
  if (!std::filesystem::exists(key_file)) {
    ::randombytes_buf(key_.data(), key_.size());
    replace_file(key_file, {reinterpret_cast<const char*>(key_.data()), key_.size()}, 0600);
    return;
  }
  const std::string held = read_file(key_file);
  if (held.size() != key_.size()) {
    throw std::runtime_error(key_file.string() + " holds no key: remove it, and another one is made");
  }
  std::copy(held.begin(), held.end(), key_.begin());
}

std::string DeviceCookies::issue(std::string_view account, std::string_view device,
                                 Clock::time_point now) const {
  const std::string text = (device.empty() ? random_id() : std::string(device)) + "." +
                           std::to_string(seconds_of(now + valid_for));
  return text + "." + mac_of(text, account);
}

std::string DeviceCookies::device_of(std::string_view cookie, std::string_view account,
                                     Clock::time_point now) const {
  const std::size_t id_end = cookie.find('.');
  const std::size_t end = cookie.rfind('.');
  if (cookie.size() > longest_cookie || end == cookie.npos || id_end == end) return {};
  const std::string_view signed_text = cookie.substr(0, end);
  const std::string_view given = cookie.substr(end + 1);
  const std::string mac = mac_of(signed_text, account);
  if (given.size() != mac.size() || ::sodium_memcmp(given.data(), mac.data(), mac.size()) != 0) return {};
  std::int64_t expiry = 0;
  const std::string_view digits = signed_text.substr(id_end + 1);
  // Nothing but digits: else a part of the account's name could stand here, and the cookie be another
  // account's.
  const char* const digits_end = digits.data() + digits.size();
  if (std::from_chars(digits.data(), digits_end, expiry).ptr != digits_end) return {};
  if (expiry <= seconds_of(now)) return {};
  return std::string(signed_text.substr(0, id_end));
}

std::string DeviceCookies::mac_of(std::string_view signed_text, std::string_view account) const {
  std::array<unsigned char, crypto_generichash_BYTES> bytes{};
  std::string text(signed_text);
  text.append(".").append(account);
  ::crypto_generichash(bytes.data(), bytes.size(), reinterpret_cast<const unsigned char*>(text.data()),
                       text.size(), key_.data(), key_.size());
  return hex(bytes.data(), bytes.size());
}

}  // namespace zrl::web
