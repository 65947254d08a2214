#include "core/text/string_list.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

namespace zrl {

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

StringList::StringList(const StringList& other) {
  if (other.size_ == 0) return;
  resize(ends_, ends_capacity_, other.size_);
  __builtin_memcpy(ends_, other.ends_, other.size_ * sizeof *ends_);
  size_ = other.size_;
  if (other.byte_count_ == 0) return;
  resize(bytes_, bytes_capacity_, other.byte_count_);
  __builtin_memcpy(bytes_, other.bytes_, other.byte_count_);
  byte_count_ = other.byte_count_;
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
  const std::uint32_t begin = index == 0 ? 0 : ends_[index - 1];
  const std::uint32_t length = ends_[index] - begin;
  __builtin_memmove(bytes_ + begin, bytes_ + begin + length, byte_count_ - begin - length);
  for (std::size_t i = index + 1; i < size_; ++i) ends_[i - 1] = ends_[i] - length;
  --size_;
  byte_count_ -= length;
}

void StringList::clear() {
  std::free(bytes_);
  std::free(ends_);
  bytes_ = nullptr;
  ends_ = nullptr;
  size_ = ends_capacity_ = bytes_capacity_ = 0;
  byte_count_ = 0;
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
}

void StringList::grow(std::size_t more_bytes) {
  constexpr std::size_t limit = std::numeric_limits<std::uint32_t>::max();
  if (more_bytes > limit - byte_count_ || size_ == limit) throw std::length_error("list too long");
  if (size_ == ends_capacity_) resize(ends_, ends_capacity_, grown(ends_capacity_, size_ + 1, 16));
  const std::size_t needed = byte_count_ + more_bytes;
  if (needed > bytes_capacity_) resize(bytes_, bytes_capacity_, grown(bytes_capacity_, needed, 256));
}

}  // namespace zrl
