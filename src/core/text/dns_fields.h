#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace zrl {

// A DNS message (RFC 1035, section 4).
using DnsBytes = std::span<const std::uint8_t>;

inline constexpr std::size_t dns_header_size = 12;
inline constexpr std::size_t longest_dns_name = 255;
// A name has at most 127 labels, and each could lie behind a pointer of its own.
inline constexpr int most_dns_pointers = 128;

// Reads the fields of a message one behind the other. The bytes are not trusted: what would lie beyond their
// end reads as zero or empty, and then every further field does. The bytes must outlive the object.
class DnsFields {
 public:
  DnsFields(DnsBytes message, std::size_t offset) : message_(message), offset_(offset) {}

  bool failed() const { return failed_; }
  std::size_t offset() const { return offset_; }

  DnsBytes bytes(std::size_t count);
  void skip(std::size_t count) { bytes(count); }
  unsigned number8();
  unsigned number16();

  // A name, whose pointers are not followed.
  void skip_name();
  // A name, its pointers followed: the labels with A to Z in lower case, each behind its length, without the
  // zero byte at the end. Two names are the same if these are.
  std::string name();

 private:
  DnsBytes message_;
  std::size_t offset_;
  bool failed_ = false;
};

}  // namespace zrl
