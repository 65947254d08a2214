#pragma once

#include <filesystem>
#include <string_view>

namespace zrl {

// Appends lines to log files. Other processes may rotate or delete the file at any time.
class Logger {
 public:
  static constexpr std::string_view program_id = "logging.logme";

  virtual ~Logger() = default;

  // Appends the line (UTF-8) and a line feed to the file, a path of the file system. The file is made if it
  // is missing; its folder must exist. Line breaks within the line become blanks, so that one call is one
  // line. Lines of several processes do not mix. Nothing is flushed to the disk. False if it failed.
  virtual bool proto(std::string_view line, const std::filesystem::path& file) = 0;
  // Why the last failed call failed; valid until the next one.
  virtual std::string_view problem() const = 0;
};

}  // namespace zrl
