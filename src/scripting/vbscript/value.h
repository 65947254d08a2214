#pragma once

#include <cstdint>
#include <string_view>

#include "scripting/vbscript/heap.h"

namespace zrl::vbs {

// The sub-type of a value. The numbers are chosen for the machine: of two operands, the bits together
// are 2 or 3 only for integers (or Empty, which is an Integer 0), and 4, 6 or 7 only for numbers of
// which one at least is a Double. From `string` on a value counts references.
enum class Type : std::uint8_t {
  empty = 0,
  integer = 2,
  long_integer = 3,
  real = 4,
  null = 8,
  boolean = 9,
  byte = 10,
  single = 11,
  currency = 12,
  date = 13,
  error = 14,
  // Stands for a variable elsewhere: arguments by reference, and operands that are not copied.
  reference = 15,
  string = 16,
  array = 17,
  object = 18,
  // Keeps an array alive and in its shape while something refers to its elements.
  array_lock = 19,
};

inline constexpr int first_counted = 16;

struct String : Counted {
  std::uint32_t length;
  std::uint32_t capacity : 31;
  std::uint32_t odd : 1;  // of the last unit only the low byte belongs to the string; see LenB
  std::uint32_t hash;     // 0: not computed

  char16_t* units() { return reinterpret_cast<char16_t*>(this + 1); }
  const char16_t* units() const { return reinterpret_cast<const char16_t*>(this + 1); }
  std::u16string_view view() const { return {units(), length}; }
  std::size_t byte_length() const { return std::size_t{length} * sizeof(char16_t) - odd; }
  std::string_view bytes() const { return {reinterpret_cast<const char*>(units()), byte_length()}; }
};

// Currency counts ten-thousandths.
inline constexpr std::int64_t currency_scale = 10'000;

// 16 bytes. Integers of all widths, Boolean (0, -1), Currency and error codes are in `i`, Single, Double
// and Date in `d`. Unused bits are 0: Empty reads as the integer 0 and as the number 0.0.
class Value {
 public:
  Value() : i_(0), type_(Type::empty) {}
  Value(const Value& other) : i_(other.i_), type_(other.type_) {
    if (counted()) ++counted_->references;
  }
  Value(Value&& other) noexcept : i_(other.i_), type_(other.type_) {
    other.i_ = 0;
    other.type_ = Type::empty;
  }
  // The old value goes last: what its end sets off sees the new one in place.
  Value& operator=(const Value& other) {
    Value copy(other);
    swap(copy);
    return *this;
  }
  Value& operator=(Value&& other) noexcept {
    Value taken(std::move(other));
    swap(taken);
    return *this;
  }
  ~Value() {
    if (counted()) release();
  }
  explicit Value(Ref<String> string);
  explicit Value(Ref<Array> array);
  explicit Value(Ref<Object> object);

  static Value of(Type type, std::int64_t integer) {
    Value value;
    value.i_ = integer;
    value.type_ = type;
    return value;
  }
  static Value of(Type type, double number) {
    Value value;
    value.d_ = number;
    value.type_ = type;
    return value;
  }
  static Value null() { return of(Type::null, std::int64_t{0}); }
  static Value boolean(bool truth) { return of(Type::boolean, std::int64_t{truth ? -1 : 0}); }
  static Value integer(std::int64_t n) { return of(Type::integer, n); }
  static Value long_integer(std::int64_t n) { return of(Type::long_integer, n); }
  static Value real(double n) { return of(Type::real, n); }
  static Value date(double n) { return of(Type::date, n); }
  static Value nothing() { return of(Type::object, std::int64_t{0}); }
  // An argument that was left out.
  static Value missing() { return of(Type::error, missing_code); }
  static Value reference_to(Value* target) {
    Value value;
    value.r_ = target;
    value.type_ = Type::reference;
    return value;
  }
  static Value lock(Array* array);

  Type type() const { return type_; }
  bool is(Type type) const { return type_ == type; }
  bool counted() const { return static_cast<int>(type_) >= first_counted && i_ != 0; }
  bool is_missing() const { return type_ == Type::error && i_ == missing_code; }

  std::int64_t i() const { return i_; }
  double d() const { return d_; }
  String* string() const;
  Array* array() const;
  Object* object() const;  // nullptr: Nothing
  Value* reference() const { return r_; }
  std::u16string_view text() const;

  const Value& get() const { return type_ == Type::reference ? *r_ : *this; }
  Value& get() { return type_ == Type::reference ? *r_ : *this; }

  // For the machine: an integer or number in place of whatever was there.
  void set(Type type, std::int64_t integer) {
    if (static_cast<int>(type_) >= first_counted) return replace(of(type, integer));
    i_ = integer;
    type_ = type;
  }
  void set(Type type, double number) {
    if (static_cast<int>(type_) >= first_counted) return replace(of(type, number));
    d_ = number;
    type_ = type;
  }
  void clear() {
    if (static_cast<int>(type_) >= first_counted) return replace(Value());
    i_ = 0;
    type_ = Type::empty;
  }
  void swap(Value& other) noexcept {
    std::swap(i_, other.i_);
    std::swap(type_, other.type_);
  }

  static constexpr std::int64_t missing_code = -2147352572;

 private:
  void replace(Value value) { swap(value); }
  void release() noexcept;

  union {
    std::int64_t i_;
    double d_;
    Value* r_;
    Counted* counted_;  // where an object is polymorphic, this is not where it begins
  };
  Type type_;
};

static_assert(sizeof(Value) == 16);

struct Container : Counted {
  Container* next_doomed = nullptr;
  bool is_array = false;
};

// Elements of all dimensions in one row, the first dimension running fastest. Copies are shared until
// one of them is written to (`Value& writable(Value&)` in arrays.h).
struct Array : Container {
  std::uint32_t locks = 0;
  bool fixed = false;
  std::uint16_t dimensions = 0;  // 0: declared, but without bounds yet
  std::size_t count = 0;         // elements
  std::uint32_t* sizes() { return reinterpret_cast<std::uint32_t*>(this + 1); }
  const std::uint32_t* sizes() const { return reinterpret_cast<const std::uint32_t*>(this + 1); }
  Value* elements = nullptr;
};

// What scripts hold as Object. The kinds are the classes of scripts and those that the engine brings.
class Object : public Container {
 public:
  enum class Kind : std::uint8_t { native, instance, procedure, module };

  explicit Object(Kind object_kind = Kind::native) : kind(object_kind) {}
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  virtual ~Object() = default;

  // Drops all values that the object holds, so that cycles come apart.
  virtual void clear() {}
  // Whether a script's Class_Terminate is still to run.
  virtual bool wants_termination() const { return false; }

  const Kind kind;
  std::size_t block_bytes = 0;
  Object* next = nullptr;
  Object* previous = nullptr;
};

inline Value::Value(Ref<String> string) : counted_(string.release()), type_(Type::string) {}
inline Value::Value(Ref<Array> array) : counted_(array.release()), type_(Type::array) {}
inline Value::Value(Ref<Object> object) : counted_(object.release()), type_(Type::object) {}
inline String* Value::string() const {
  return static_cast<String*>(counted_);
}
inline Array* Value::array() const {
  return static_cast<Array*>(counted_);
}
inline Object* Value::object() const {
  return static_cast<Object*>(counted_);
}
inline std::u16string_view Value::text() const {
  return string()->view();
}

template <class T>
Ref<T>::~Ref() {
  if (!pointer_ || --pointer_->references != 0) return;
  if constexpr (std::is_same_v<T, String>) {
    pointer_->heap->free_string(pointer_);
  } else {
    pointer_->heap->retire(pointer_);
  }
}

}  // namespace zrl::vbs
