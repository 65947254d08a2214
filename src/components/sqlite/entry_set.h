#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zrl::sqlite {

// Hashes entries (SipHash-2-4, 128 bits) with a random key of its own, so that nobody can prepare entries
// whose hashes collide. The case of A to Z is ignored, as the tables ignore it.
class EntryHasher {
 public:
  struct Hash {
    std::uint64_t high;  // never 0
    std::uint64_t low;
  };

  EntryHasher();

  Hash operator()(std::string_view entry);

 private:
  std::array<unsigned char, 16> key_;
  std::string folded_;
};

// A set of entries, each with a number, that takes 16 bytes a slot whatever their length: it keeps
// 96 bits of their hashes. Two of 10^9 entries collide less than once in 10^10 imports, which is rarer than a
// fault of the memory.
class EntrySet {
 public:
  // Room for `entries`; more must not be added.
  explicit EntrySet(std::size_t entries);

  // False if the set already has the entry, which then keeps its number.
  bool insert(const EntryHasher::Hash& hash, std::uint32_t number);
  std::optional<std::uint32_t> find(const EntryHasher::Hash& hash) const;
  void clear();

 private:
  struct Slot {
    std::uint64_t high;  // 0 in a free slot
    std::uint32_t low;
    std::uint32_t number;
  };

  std::size_t slot_of(const EntryHasher::Hash& hash) const;

  std::vector<Slot> slots_;
  std::size_t mask_;
};

}  // namespace zrl::sqlite
