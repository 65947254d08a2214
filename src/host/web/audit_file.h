#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>

namespace zrl::web {

// The file that all audit logs of a host append to, from any thread. Other processes may append to the same
// file, and it may be moved away at any time: it is opened each time.
//
// It turns over by its size: "audit.log" becomes "audit.log.1", that "audit.log.2" and so on, and the oldest
// goes.
class AuditFile {
 public:
  // What becomes of actions while the file cannot be written.
  enum class IfUnwritable : std::uint8_t { carry_on, refuse };

  struct Limits {
    std::uintmax_t bytes = 16 << 20;  // of one file, if no single append is longer
    int kept = 8;                     // files beside the newest
  };

  // `notify` gets a line for the operator when the file can no longer be written, and when it can be again.
  // It is called on the thread that appends, and must not append itself.
  AuditFile(std::filesystem::path path, IfUnwritable if_unwritable,
            std::function<void(std::string_view)> notify, const Limits& limits);
  explicit AuditFile(std::filesystem::path path)
      : AuditFile(std::move(path), IfUnwritable::carry_on, {}, Limits()) {}

  // Appends whole lines. False if they, or a part of them, are lost; the next append that works says how many
  // times this happened.
  bool append(std::string_view lines);

  // Whether an action that is to be recorded may be done now: always with `carry_on`; with `refuse` only if
  // the file can be opened and the disk has room for some lines more.
  bool permits_actions();

 private:
  class Locked;

  bool write(std::string_view lines, bool may_turn_over);
  void turn_over() const;
  void report(bool works, int failure);

  const std::filesystem::path path_;
  const IfUnwritable if_unwritable_;
  const std::function<void(std::string_view)> notify_;
  const Limits limits_;
  std::mutex mutex_;
  std::uint64_t lost_ = 0;     // appends
  bool line_is_torn_ = false;  // the disk was full in the middle of a line
  bool works_ = true;
};

}  // namespace zrl::web
