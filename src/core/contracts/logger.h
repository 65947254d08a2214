#pragma once

#include <filesystem>
#include <string_view>

namespace zrl {

// Appends lines to log files.
class Logger {
 public:
  static constexpr std::string_view program_id = "logging.logme";

  virtual ~Logger() = default;

  // Appends the line, and a line feed, to the file, which is made if it is missing; its folder must be
  // there. Line breaks within the line become blanks. Lines of several processes do not mix. False if it
  // failed, with the reason in problem().
  virtual bool proto(std::string_view line, const std::filesystem::path& file) = 0;
  virtual std::string_view problem() const = 0;
};

}  // namespace zrl
