#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zrl {

// The registry store: values under full paths such as "HKLM\SOFTWARE\Mirvan\reloadblack", through which the
// console and the proxy share settings and flags. Paths and texts are UTF-8; paths are compared without
// regard to the case of ASCII letters. Operations raise zrl::Error on failure and then change nothing. Other
// processes may use the same store at the same time; each operation is atomic and durable when it returns.
class Registry {
 public:
  static constexpr std::string_view program_id = "WScript.Shell";

  virtual ~Registry() = default;

  // The value as text (a double word in decimal); nothing if there is none.
  virtual std::optional<std::string> regread(std::string_view path) = 0;
  // When the value became what it is, in seconds since 1970 (UTC), whichever program wrote it; writing the
  // same value again does not count. Nothing if that is not known. Stores without such times know none.
  virtual std::optional<std::int64_t> changed_at(std::string_view path) {
    (void)path;
    return std::nullopt;
  }
  // A write replaces the value and its kind.
  virtual void write_string(std::string_view path, std::string_view text) = 0;  // REG_SZ
  virtual void write_dword(std::string_view path, std::uint32_t number) = 0;    // REG_DWORD
  // Deleting a value that is not there is no error.
  virtual void delete_value(std::string_view path) = 0;
};

}  // namespace zrl
