#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string_view>

namespace zrl {

// A list of texts in one contiguous arena: the bytes of all texts one after the other, and for each text the
// offset where it ends. A list of a million entries costs its bytes plus four bytes an entry, and up to a
// quarter more while it grows; there is no heap object per entry. Texts may hold any bytes.
//
// Limits: 4 GiB of text, 2^32 - 1 entries; going over raises std::length_error, a lack of memory
// std::bad_alloc, and the list is then as it was. A view that operator[] returned is valid until the list is
// next changed, moved or destroyed. A moved-from list is empty.
//
// A copy copies everything, unless the list has been frozen: copies of a frozen list share its arena, also
// between threads, and whichever is changed first takes a copy of its own.
class StringList {
 public:
  StringList() = default;
  StringList(std::initializer_list<std::string_view> texts);
  StringList(const StringList& other);
  StringList(StringList&& other) noexcept;
  StringList& operator=(StringList other) noexcept;
  ~StringList();

  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }

  // `index` must be below size().
  std::string_view operator[](std::size_t index) const {
    const std::uint32_t begin = index == 0 ? 0 : ends_[index - 1];
    return {bytes_ + begin, ends_[index] - begin};
  }

  // `text` must not be a view into this list, whose bytes may move.
  void push_back(std::string_view text) {
    if (ends_capacity_ <= size_ || text.size() > bytes_capacity_ - byte_count_) grow(text.size());
    if (!text.empty()) {
      __builtin_memcpy(bytes_ + byte_count_, text.data(), text.size());  // NOLINT(clang-analyzer-*)
    }
    byte_count_ += static_cast<std::uint32_t>(text.size());
    ends_[size_++] = byte_count_;
  }

  // Drops the last text; the list must not be empty. The memory is kept.
  void pop_back();

  // Takes out the text at `index` (below size()). Moves all that follows it, so use retain() for several.
  void erase(std::size_t index);

  // Keeps the texts for which `keep(std::string_view)` is true, in their order, in one pass. `keep` must not
  // change the list, and must not throw: the list would be left half compacted.
  template <typename Predicate>
  void retain(Predicate keep);

  // Drops all texts and returns their memory.
  void clear();

  // Index of the first text equal to `text`, byte by byte, or size(). A linear search.
  std::size_t find(std::string_view text) const;

  // Gives back what was kept for growing, and lets copies share the arena from now on.
  void freeze();
  // Whether both are views of one arena; false of lists that have never been frozen.
  bool shares_with(const StringList& other) const { return arena_ != nullptr && arena_ == other.arena_; }
  // How many lists share the arena; 0 for one that is not frozen. Others may change it meanwhile.
  std::size_t sharers() const;
  // Of the texts and their borders: equal lists have equal ones, others hardly ever.
  std::uint64_t fingerprint() const;
  bool operator==(const StringList& other) const;

  // Bytes that the list has asked the heap for, shared or not.
  std::size_t memory() const;

  void swap(StringList& other) noexcept;

 private:
  struct Arena;

  void grow(std::size_t more_bytes);
  // Before anything in the arena is changed.
  void make_own() {
    if (arena_ != nullptr) copy_arena();
  }
  void copy_arena();
  void copy_texts();
  void release();

  char* bytes_ = nullptr;
  std::uint32_t* ends_ = nullptr;
  std::size_t size_ = 0;
  std::size_t ends_capacity_ = 0;
  std::size_t bytes_capacity_ = 0;
  std::uint32_t byte_count_ = 0;
  Arena* arena_ = nullptr;  // of a frozen list, whose capacities are 0: pushing finds no room in it
};

template <typename Predicate>
void StringList::retain(Predicate keep) {
  make_own();
  std::size_t kept = 0;
  std::uint32_t kept_bytes = 0;
  std::uint32_t begin = 0;
  for (std::size_t i = 0; i < size_; ++i) {
    const std::uint32_t end = ends_[i];
    const std::uint32_t length = end - begin;
    if (keep(std::string_view(bytes_ + begin, length))) {
      if (length != 0) __builtin_memmove(bytes_ + kept_bytes, bytes_ + begin, length);
      kept_bytes += length;
      ends_[kept++] = kept_bytes;
    }
    begin = end;
  }
  size_ = kept;
  byte_count_ = kept_bytes;
}

}  // namespace zrl
