#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zrl::vbs {

class Heap;
class Object;
struct Container;
struct String;
struct Array;

// What values share and count.
struct Counted {
  Heap* heap;
  std::uint32_t references;
};

// An intrusive pointer.
template <class T>
class Ref {
 public:
  Ref() = default;
  // Takes over a reference that is counted already.
  static Ref adopt(T* pointer) {
    Ref ref;
    ref.pointer_ = pointer;
    return ref;
  }
  explicit Ref(T* pointer) : pointer_(pointer) {
    if (pointer_) ++pointer_->references;
  }
  Ref(const Ref& other) : Ref(other.pointer_) {}
  Ref(Ref&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
  Ref& operator=(Ref other) noexcept {
    std::swap(pointer_, other.pointer_);
    return *this;
  }
  ~Ref();

  T* get() const { return pointer_; }
  T* operator->() const { return pointer_; }
  T& operator*() const { return *pointer_; }
  explicit operator bool() const { return pointer_ != nullptr; }
  T* release() { return std::exchange(pointer_, nullptr); }

 private:
  T* pointer_ = nullptr;
};

// Called when much work was done; raises when the time is over.
class WorkMeter {
 public:
  virtual void check_time() = 0;

 protected:
  ~WorkMeter() = default;
};

// The memory of one engine: counted against a limit, small blocks from free lists. Objects whose last
// reference goes are destroyed one after the other, never one inside the other, however long the chain;
// those that have a Class_Terminate wait in `terminations` for the machine.
class Heap {
 public:
  Heap(std::size_t limit, std::size_t string_limit);
  ~Heap();
  Heap(const Heap&) = delete;
  Heap& operator=(const Heap&) = delete;

  // From now on; what is held already stays.
  void set_limits(std::size_t limit, std::size_t string_limit) {
    limit_ = limit;
    string_limit_ = string_limit;
  }
  void set_meter(WorkMeter* meter) { meter_ = meter; }

  // Raises error 7 when the limit is reached.
  void* allocate(std::size_t bytes);
  void deallocate(void* block, std::size_t bytes) noexcept;
  // Memory that something of ours took elsewhere (tables of a dictionary); raises like allocate.
  void charge(std::size_t bytes);
  void refund(std::size_t bytes) noexcept { used_ -= bytes; }
  std::size_t used() const { return used_; }
  std::size_t string_limit() const { return string_limit_; }

  // Counts bytes that are copied, filled or scanned, so that the clock is looked at by the work done and
  // not only by instructions: one of them may take a second. What is allocated counts by itself.
  void work(std::size_t bytes) {
    work_ += bytes;
    if (work_ >= work_between_checks) check_work();
  }
  // The most units that a string of `length` which grows should have room for: half as much again, as far
  // as the limits allow.
  std::size_t roomy_length(std::size_t length) const;

  Ref<String> string(std::u16string_view text);
  // Room for `length` units, which the caller fills. Raises error 14 when it is too long.
  Ref<String> blank_string(std::size_t length);
  // Room for bytes, the low one of each unit first; an odd last one has a unit of its own.
  Ref<String> byte_string(std::size_t bytes);
  void check_string_length(std::size_t length) const;
  const Ref<String>& empty_string() const { return empty_; }
  // One unit; those of Latin-1 are kept.
  Ref<String> unit_string(char16_t unit);

  template <class T, class... Arguments>
  Ref<T> make(Arguments&&... arguments) {
    void* block = allocate(sizeof(T));
    T* object = nullptr;
    try {
      object = new (block) T(std::forward<Arguments>(arguments)...);
    } catch (...) {
      deallocate(block, sizeof(T));
      throw;
    }
    enlist(*object, sizeof(T));
    return Ref<T>::adopt(object);
  }
  // For objects with something behind them: the block is `bytes` long.
  void enlist(Object& object, std::size_t bytes);

  // The last reference has gone.
  void free_string(String* string) noexcept;
  void retire(Object* object) noexcept;
  void retire(Array* array) noexcept;

  bool has_terminations() const { return terminations_.first != nullptr; }
  // The next object that is to be terminated, with one reference left.
  Ref<Object> next_termination();
  // Those that wait behind it. They are set aside while it ends, for what it drops itself goes first.
  struct Terminations {
    Object* first = nullptr;
    Object* last = nullptr;
  };
  Terminations take_terminations();
  void append_terminations(Terminations objects);

  // All living objects, for a reset: the first one, or nullptr.
  Object* first_object() const { return objects_; }

 private:
  static constexpr std::size_t work_between_checks = std::size_t{4} << 20;
  static constexpr std::size_t largest_small = 512;
  static constexpr std::size_t granule = 16;

  void drop(Container* container) noexcept;
  void destroy(Container* container) noexcept;
  void* refill(std::size_t size_class);
  void check_work();

  std::size_t used_ = 0;
  std::size_t work_ = 0;
  WorkMeter* meter_ = nullptr;
  std::size_t limit_;
  std::size_t string_limit_;
  void* free_[largest_small / granule + 1] = {};
  std::vector<std::unique_ptr<std::byte[]>> chunks_;
  std::byte* chunk_next_ = nullptr;
  std::size_t chunk_left_ = 0;

  Object* objects_ = nullptr;
  Container* doomed_ = nullptr;
  bool destroying_ = false;
  Terminations terminations_;

  Ref<String> empty_;
  Ref<String> units_[256];
};

// For containers that work on a heap's account: they raise its error 7 instead of growing beyond the limit.
template <class T>
class HeapAllocator {
 public:
  using value_type = T;
  explicit HeapAllocator(Heap& heap) noexcept : heap_(&heap) {}
  template <class U>
  HeapAllocator(const HeapAllocator<U>& other) noexcept : heap_(&other.heap()) {}  // NOLINT

  T* allocate(std::size_t count) {
    heap_->charge(count * item_bytes);
    try {
      return std::allocator<T>().allocate(count);
    } catch (...) {
      heap_->refund(count * item_bytes);
      throw;
    }
  }
  void deallocate(T* block, std::size_t count) noexcept {
    heap_->refund(count * item_bytes);
    std::allocator<T>().deallocate(block, count);
  }
  Heap& heap() const { return *heap_; }
  template <class U>
  bool operator==(const HeapAllocator<U>& other) const {
    return heap_ == &other.heap();
  }

 private:
  static constexpr std::size_t item_bytes =
      sizeof(T);  // NOLINT(bugprone-sizeof-expression): T may be a pointer

  Heap* heap_;
};

template <class T>
using HeapVector = std::vector<T, HeapAllocator<T>>;
using HeapText = std::basic_string<char16_t, std::char_traits<char16_t>, HeapAllocator<char16_t>>;

}  // namespace zrl::vbs
