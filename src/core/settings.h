#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zrl {

class Console;

// The folders of an instance of the mail server, as product paths (core/text/paths.h). A folder that is not
// set is empty.
struct SmtpDirectories {
  std::string drop;
  std::string bad_mail;
  std::string pickup;
  std::string queue;
};

// The settings outside the database: the product key from the file "proxy.ini" in the console's folder, and
// the values of the component Registry. No operation throws: a read that fails is empty, a write or deletion
// that fails returns false and changes nothing; both are recorded as failed steps, and successful writes are
// recorded too, without the secrets of connection strings. Nothing but the product key is cached, since the
// proxy changes values as well. Texts are UTF-8. Owned by the console, which outlives it.
class Settings {
 public:
  explicit Settings(Console& console) : console_(console) {}

  // The text behind the last "=" in "proxy.ini" (the whole text if there is none), without blanks and line
  // breaks; "Mirvan" if that is empty or there is no such file. Read at the first call and then kept. The
  // reference is valid as long as the console.
  const std::string& product_key();

  // Full paths: "HKLM\SOFTWARE\" + product key + "\" + name.
  std::string path_of(std::string_view name);
  std::string product_version_path() { return path_of("ProductVersion"); }
  std::string data_provider_path() { return path_of("dataprovider"); }
  std::string debug_path() { return path_of("debug"); }
  std::string language_path() { return path_of("language"); }

  // These take full paths. A value reads as text, a double word in decimal; empty if there is none.
  std::string regread(std::string_view path);
  // See Registry::changed_at().
  std::optional<std::int64_t> changed_at(std::string_view path);
  bool regwrite_string(std::string_view path, std::string_view text);
  bool regwrite_dword(std::string_view path, std::uint32_t number);
  // Sets the double word to 1 unless it is; recorded only if it fails.
  void raise_again(std::string_view flag_path);
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
