#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zrl {

class Console;

// The folders of an instance of the mail server, as paths of the product. One that is not set is
// empty.
struct SmtpDirectories {
  std::string drop;
  std::string bad_mail;
  std::string pickup;
  std::string queue;
};

// The settings outside the database: the product key from "proxy.ini" and the values in the
// registry store. No operation throws: a read that fails is empty, a write or deletion that fails
// changes nothing; both are recorded as failed steps.
class Settings {
 public:
  explicit Settings(Console& console) : console_(console) {}

  // The text behind the last "=" in "proxy.ini", blanks and line breaks taken out; "Mirvan" if
  // there is none. Read once; read again as long as it is empty.
  const std::string& product_key();

  // Full paths: "HKLM\SOFTWARE\" + product key + "\" + name.
  std::string path_of(std::string_view name);
  std::string product_version_path() { return path_of("ProductVersion"); }
  std::string data_provider_path() { return path_of("dataprovider"); }
  std::string debug_path() { return path_of("debug"); }
  std::string language_path() { return path_of("language"); }

  std::string regread(std::string_view path);
  bool regwrite_string(std::string_view path, std::string_view text);
  bool regwrite_dword(std::string_view path, std::uint32_t number);
  bool delete_value(std::string_view path);

  // The trimmed value of `ProductVersion`.
  std::string product_version();
  // The values "SmtpSvc\N\DropDirectory", "BadMailDirectory", "PickupDirectory" and "QueueDirectory"
  // under the product key, `instance` being N.
  SmtpDirectories smtp_directories(unsigned instance);

 private:
  Console& console_;
  std::string product_key_;
};

// The product key that the text of a "proxy.ini" yields.
std::string product_key_in(std::string_view ini_text);

}  // namespace zrl
