#include "core/text/string_list.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

namespace zrl {

// The blocks of a frozen list, which nobody changes any more.
struct StringList::Arena {
  std::atomic<std::size_t> sharers;
  char* bytes;
  std::uint32_t* ends;
  std::size_t memory;
};

namespace {

// realloc rather than new and copy: the C library moves large blocks by remapping their pages, so
// that a growing list neither copies its text nor holds it twice.
template <typename T>
void resize(T*& block, std::size_t& capacity, std::size_t wanted) {
  void* moved = std::realloc(block, wanted * sizeof(T));
  if (moved == nullptr) throw std::bad_alloc();
  block = static_cast<T*>(moved);
  capacity = wanted;
}

std::size_t grown(std::size_t capacity, std::size_t needed, std::size_t least) {
  return std::max({least, capacity + capacity / 4, needed});
}

}  // namespace

StringList::StringList(std::initializer_list<std::string_view> texts) {
  for (const std::string_view text : texts) push_back(text);
}

StringList::StringList(const StringList& other)
    : bytes_(other.bytes_),
      ends_(other.ends_),
      size_(other.size_),
      byte_count_(other.byte_count_),
      arena_(other.arena_) {
  if (arena_ != nullptr) {
    arena_->sharers.fetch_add(1, std::memory_order_relaxed);
  } else {
    copy_texts();
  }
}

StringList::StringList(StringList&& other) noexcept {
  swap(other);
}

StringList& StringList::operator=(StringList other) noexcept {
  swap(other);
  return *this;
}

StringList::~StringList() {
  clear();
}

void StringList::pop_back() {
  --size_;
  byte_count_ = size_ == 0 ? 0 : ends_[size_ - 1];
}

void StringList::erase(std::size_t index) {
  make_own();
  const std::uint32_t begin = index == 0 ? 0 : ends_[index - 1];
  const std::uint32_t length = ends_[index] - begin;
  __builtin_memmove(bytes_ + begin, bytes_ + begin + length, byte_count_ - begin - length);
  for (std::size_t i = index + 1; i < size_; ++i) ends_[i - 1] = ends_[i] - length;
  --size_;
  byte_count_ -= length;
}

void StringList::clear() {
  release();
  bytes_ = nullptr;
  ends_ = nullptr;
  size_ = ends_capacity_ = bytes_capacity_ = 0;
  byte_count_ = 0;
}

void StringList::release() {
  if (arena_ == nullptr) {
    std::free(bytes_);
    std::free(ends_);
    return;
  }
  Arena* const arena = std::exchange(arena_, nullptr);
  if (arena->sharers.fetch_sub(1, std::memory_order_acq_rel) > 1) return;
  std::free(arena->bytes);
  std::free(arena->ends);
  delete arena;
}

// Takes the texts that another list owns, or shares, into blocks of its own.
void StringList::copy_texts() {
  const char* const bytes = std::exchange(bytes_, nullptr);
  const std::uint32_t* const ends = std::exchange(ends_, nullptr);
  const std::size_t size = std::exchange(size_, 0);
  const std::uint32_t byte_count = std::exchange(byte_count_, 0);
  try {
    if (size != 0) resize(ends_, ends_capacity_, size);
    if (byte_count != 0) resize(bytes_, bytes_capacity_, byte_count);
  } catch (...) {
    std::free(std::exchange(ends_, nullptr));
    throw;
  }
  if (size != 0) __builtin_memcpy(ends_, ends, size * sizeof *ends);
  if (byte_count != 0) __builtin_memcpy(bytes_, bytes, byte_count);
  size_ = size;
  byte_count_ = byte_count;
}

void StringList::copy_arena() {
  StringList own;
  own.bytes_ = bytes_;
  own.ends_ = ends_;
  own.size_ = size_;
  own.byte_count_ = byte_count_;
  own.copy_texts();
  swap(own);
}

void StringList::freeze() {
  if (arena_ != nullptr || size_ == 0) return;
  auto* const arena = new Arena{};
  try {
    resize(ends_, ends_capacity_, size_);
    if (byte_count_ != 0) resize(bytes_, bytes_capacity_, byte_count_);
  } catch (...) {
    delete arena;
    throw;
  }
  arena->sharers = 1;
  arena->bytes = bytes_;
  arena->ends = ends_;
  arena->memory = memory();
  arena_ = arena;
  ends_capacity_ = bytes_capacity_ = 0;
}

std::size_t StringList::sharers() const {
  return arena_ == nullptr ? 0 : arena_->sharers.load(std::memory_order_acquire);
}

std::size_t StringList::memory() const {
  return arena_ == nullptr ? bytes_capacity_ + ends_capacity_ * sizeof(std::uint32_t) : arena_->memory;
}

bool StringList::operator==(const StringList& other) const {
  if (size_ != other.size_ || byte_count_ != other.byte_count_) return false;
  if (size_ == 0 || ends_ == other.ends_) return true;
  return std::memcmp(ends_, other.ends_, size_ * sizeof *ends_) == 0 &&
         (byte_count_ == 0 || std::memcmp(bytes_, other.bytes_, byte_count_) == 0);
}

// Eight bytes at a time: a list of a million entries takes a few milliseconds.
std::uint64_t StringList::fingerprint() const {
  constexpr std::uint64_t factor = 0x9e3779b97f4a7c15;
  std::uint64_t hash = size_ * factor ^ byte_count_;
  const auto mix = [&hash](const void* block, std::size_t length) {
    const auto* bytes = static_cast<const char*>(block);
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < length; i += sizeof word) {
      word = 0;
      std::memcpy(&word, bytes + i, std::min(sizeof word, length - i));
      hash = (hash ^ word) * factor;
      hash ^= hash >> 29;
    }
  };
  mix(bytes_, byte_count_);
  mix(ends_, size_ * sizeof *ends_);
  return hash;
}

std::size_t StringList::find(std::string_view text) const {
  for (std::size_t i = 0; i < size_; ++i) {
    if ((*this)[i] == text) return i;
  }
  return size_;
}

void StringList::swap(StringList& other) noexcept {
  std::swap(bytes_, other.bytes_);
  std::swap(ends_, other.ends_);
  std::swap(size_, other.size_);
  std::swap(ends_capacity_, other.ends_capacity_);
  std::swap(bytes_capacity_, other.bytes_capacity_);
  std::swap(byte_count_, other.byte_count_);
  std::swap(arena_, other.arena_);
}

void StringList::grow(std::size_t more_bytes) {
  constexpr std::size_t limit = std::numeric_limits<std::uint32_t>::max();
  if (more_bytes > limit - byte_count_ || size_ == limit) throw std::length_error("list too long");
  make_own();
  if (size_ == ends_capacity_) resize(ends_, ends_capacity_, grown(ends_capacity_, size_ + 1, 16));
  const std::size_t needed = byte_count_ + more_bytes;
  if (needed > bytes_capacity_) resize(bytes_, bytes_capacity_, grown(bytes_capacity_, needed, 256));
}

}  // namespace zrl
