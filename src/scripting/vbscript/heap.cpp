#include "scripting/vbscript/heap.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "scripting/vbscript/errors.h"
#include "scripting/vbscript/value.h"

namespace zrl::vbs {

namespace {

constexpr std::size_t chunk_bytes = std::size_t{64} << 10;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool own_blocks = false;  // lets the sanitizer see every block
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool own_blocks = false;
#else
constexpr bool own_blocks = true;
#endif
#else
constexpr bool own_blocks = true;
#endif

constexpr std::size_t string_bytes(std::size_t capacity) {
  return sizeof(String) + capacity * sizeof(char16_t);
}

}  // namespace

Heap::Heap(std::size_t limit, std::size_t string_limit) : limit_(limit), string_limit_(string_limit) {
  empty_ = blank_string(0);
}

Heap::~Heap() {
  empty_ = {};
  for (auto& unit : units_) unit = {};
}

void Heap::charge(std::size_t bytes) {
  if (bytes > limit_ || used_ > limit_ - bytes) raise(error::out_of_memory);
  if (bytes > largest_small) work(bytes);
  used_ += bytes;
}

void Heap::check_work() {
  work_ = 0;
  if (meter_) meter_->check_time();
}

std::size_t Heap::roomy_length(std::size_t length) const {
  const std::size_t wanted = length < 32 ? 32 : length + length / 2;
  const std::size_t free_units = limit_ > used_ ? (limit_ - used_) / sizeof(char16_t) : 0;
  // Something is left to others, so that what works on the string finds room, too.
  const std::size_t spare = free_units > length ? (free_units - length) / 2 : 0;
  return std::min({wanted, std::max(string_limit_, length), length + spare});
}

void* Heap::allocate(std::size_t bytes) {
  charge(bytes);
  if (bytes > largest_small || !own_blocks) {
    void* block = ::operator new(bytes, std::nothrow);
    if (block) return block;
    refund(bytes);
    raise(error::out_of_memory);
  }
  const std::size_t size_class = (bytes + granule - 1) / granule;
  void* block = free_[size_class];
  if (!block) return refill(size_class);
  std::memcpy(&free_[size_class], block, sizeof(void*));
  return block;
}

void* Heap::refill(std::size_t size_class) {
  const std::size_t bytes = size_class * granule;
  if (chunk_left_ < bytes) {
    chunks_.push_back(std::make_unique<std::byte[]>(chunk_bytes));
    chunk_next_ = chunks_.back().get();
    chunk_left_ = chunk_bytes;
  }
  void* block = chunk_next_;
  chunk_next_ += bytes;
  chunk_left_ -= bytes;
  return block;
}

void Heap::deallocate(void* block, std::size_t bytes) noexcept {
  used_ -= bytes;
  if (bytes > largest_small || !own_blocks) {
    ::operator delete(block);
    return;
  }
  const std::size_t size_class = (bytes + granule - 1) / granule;
  std::memcpy(block, &free_[size_class], sizeof(void*));
  free_[size_class] = block;
}

void Heap::check_string_length(std::size_t length) const {
  if (length > string_limit_) raise(error::string_space);
}

Ref<String> Heap::blank_string(std::size_t length) {
  check_string_length(length);
  auto* string = static_cast<String*>(allocate(string_bytes(length)));
  string->heap = this;
  string->references = 1;
  string->length = static_cast<std::uint32_t>(length);
  string->capacity = static_cast<std::uint32_t>(length) & 0x7fffffffU;
  string->odd = 0;
  string->hash = 0;
  return Ref<String>::adopt(string);
}

Ref<String> Heap::byte_string(std::size_t bytes) {
  Ref<String> string = blank_string((bytes + 1) / sizeof(char16_t));
  string->odd = bytes % sizeof(char16_t) != 0 ? 1 : 0;
  if (string->odd != 0) string->units()[string->length - 1] = 0;
  return string;
}

Ref<String> Heap::string(std::u16string_view text) {
  if (text.empty()) return empty_;
  Ref<String> string = blank_string(text.size());
  std::memcpy(string->units(), text.data(), text.size() * sizeof(char16_t));
  return string;
}

Ref<String> Heap::unit_string(char16_t unit) {
  if (unit >= std::size(units_)) return string({&unit, 1});
  if (!units_[unit]) units_[unit] = string({&unit, 1});
  return units_[unit];
}

void Heap::free_string(String* string) noexcept {
  deallocate(string, string_bytes(string->capacity));
}

void Heap::enlist(Object& object, std::size_t bytes) {
  object.heap = this;
  object.references = 1;
  object.block_bytes = bytes;
  object.next = objects_;
  if (objects_) objects_->previous = &object;
  objects_ = &object;
}

void Heap::retire(Object* object) noexcept {
  if (!object->wants_termination()) return drop(object);
  object->references = 1;
  object->next_doomed = nullptr;
  append_terminations({object, object});
}

Ref<Object> Heap::next_termination() {
  Object* object = terminations_.first;
  terminations_.first = static_cast<Object*>(object->next_doomed);
  return Ref<Object>::adopt(object);
}

Heap::Terminations Heap::take_terminations() {
  return std::exchange(terminations_, {});
}

void Heap::append_terminations(Terminations objects) {
  if (!objects.first) return;
  if (terminations_.first) {
    terminations_.last->next_doomed = objects.first;
  } else {
    terminations_.first = objects.first;
  }
  terminations_.last = objects.last;
}

void Heap::retire(Array* array) noexcept {
  drop(array);
}

void Heap::drop(Container* container) noexcept {
  container->next_doomed = doomed_;
  doomed_ = container;
  if (destroying_) return;
  destroying_ = true;
  while (doomed_) {
    Container* next = doomed_;
    doomed_ = next->next_doomed;
    destroy(next);
  }
  destroying_ = false;
}

void Heap::destroy(Container* container) noexcept {
  if (container->is_array) {
    auto* array = static_cast<Array*>(container);
    for (std::size_t i = 0; i < array->count; ++i) array->elements[i].~Value();
    if (array->elements) deallocate(array->elements, array->count * sizeof(Value));
    const std::size_t bytes = sizeof(Array) + array->dimensions * sizeof(std::uint32_t);
    array->~Array();
    deallocate(array, bytes);
    return;
  }
  auto* object = static_cast<Object*>(container);
  if (object->previous) object->previous->next = object->next;
  if (object->next) object->next->previous = object->previous;
  if (objects_ == object) objects_ = object->next;
  const std::size_t bytes = object->block_bytes;
  object->~Object();
  deallocate(object, bytes);
}

}  // namespace zrl::vbs
