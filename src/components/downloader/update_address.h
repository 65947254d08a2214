#pragma once

#include <string>
#include <string_view>

namespace zrl::downloader {

// The address of an update server.
class UpdateAddress {
 public:
  // Raises zrl::Error, whose text does not repeat the address, unless it is one of http or https.
  explicit UpdateAddress(std::string_view text);

  // The address of a file below this one; `file` must need no escapes. Keep it secret: it contains the user
  // name, the password and the query of the address.
  std::string of(std::string_view file) const;

  // The address without these three, to be shown.
  const std::string& shown() const { return shown_; }
  bool is_encrypted() const { return encrypted_; }

 private:
  std::string text_;
  std::string folder_;  // the path, with a "/" at its end
  std::string shown_;
  bool encrypted_ = false;
};

}  // namespace zrl::downloader
