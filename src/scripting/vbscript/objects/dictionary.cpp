#include "scripting/vbscript/objects/dictionary.h"

#include <bit>
#include <cmath>
#include <random>

#include "scripting/vbscript/arrays.h"
#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/machine.h"
#include "scripting/vbscript/unicode.h"

namespace zrl::vbs {

namespace {

constexpr std::size_t fewest_slots = 8;

std::uint32_t mixed(std::uint64_t bits) {
  bits ^= bits >> 33;
  bits *= 0xff51afd7ed558ccdULL;
  bits ^= bits >> 29;
  return static_cast<std::uint32_t>(bits) | 1U;
}

// Keys are often words of a mail: its writer must not know which of them fall together.
std::uint64_t random_seed() {
  std::random_device device;
  return std::uint64_t{device()} << 32 | device();
}

std::uint32_t hash_text(std::u16string_view text) {
  static const std::uint64_t seed = random_seed();
  std::uint64_t hash = seed;
  for (const char16_t unit : text) hash = (hash ^ unit) * 1099511628211ULL;
  return mixed(hash);
}

bool is_number(const Value& value) {
  switch (value.type()) {
    case Type::integer:
    case Type::long_integer:
    case Type::real:
    case Type::single:
    case Type::boolean:
    case Type::byte:
    case Type::currency:
    case Type::date:
      return true;
    default:
      return false;
  }
}

double number_of(const Value& value) {
  switch (value.type()) {
    case Type::real:
    case Type::single:
    case Type::date:
      return value.d();
    case Type::currency:
      return currency_to_double(value.i());
    default:
      return static_cast<double>(value.i());
  }
}

}  // namespace

Dictionary::~Dictionary() {
  if (charged_ > 0) heap->refund(charged_);
}

std::uint32_t Dictionary::hash_of(const Value& key) const {
  if (key.is(Type::string)) {
    heap->work(key.text().size());
    if (ignores_case_) return hash_text(lower_cased(key.text()));
    String* string = key.string();
    if (string->hash == 0) string->hash = hash_text(string->view());
    return string->hash;
  }
  if (is_number(key)) {
    const double number = number_of(key);
    return mixed(std::bit_cast<std::uint64_t>(number == 0 ? 0.0 : number));
  }
  if (key.is(Type::array)) raise(error::type_mismatch);
  return mixed(static_cast<std::uint64_t>(key.i()) * 31 + static_cast<std::uint64_t>(key.type()));
}

bool Dictionary::same(const Value& a, const Value& b) const {
  if (a.is(Type::string) && b.is(Type::string)) {
    return ignores_case_ ? equal_ignoring_case(a.text(), b.text()) : a.text() == b.text();
  }
  if (is_number(a) && is_number(b)) return number_of(a) == number_of(b);
  return a.type() == b.type() && a.i() == b.i();
}

// Where the key is, or the free place for it.
std::size_t Dictionary::slot_of(const Value& key, std::uint32_t hash) const {
  const std::size_t mask = slots_.size() - 1;
  std::size_t slot = hash & mask;
  std::size_t passed = 0;
  while (slots_[slot] != free_slot) {
    if (slots_[slot] != left_slot) {
      const Entry& entry = entries_[slots_[slot] - 1];
      if (entry.live && entry.hash == hash && same(entry.key, key)) break;
    }
    slot = (slot + 1) & mask;
    ++passed;
  }
  heap->work(passed * sizeof(Entry));
  return slot;
}

void Dictionary::rebuild(std::size_t slots) {
  const std::size_t bytes = slots * sizeof(std::uint32_t) + slots / 2 * sizeof(Entry);
  heap->charge(bytes);
  heap->refund(charged_);
  charged_ = bytes;
  std::size_t kept = 0;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (!entries_[i].live) continue;
    if (i != kept) std::swap(entries_[kept], entries_[i]);
    ++kept;
  }
  entries_.resize(kept);
  entries_.reserve(slots / 2);
  slots_.assign(slots, free_slot);
  left_ = 0;
  const std::size_t mask = slots - 1;
  for (std::size_t i = 0; i < kept; ++i) {
    std::size_t slot = entries_[i].hash & mask;
    while (slots_[slot] != free_slot) slot = (slot + 1) & mask;
    slots_[slot] = static_cast<std::uint32_t>(i + 1);
  }
}

void Dictionary::grow() {
  if (slots_.empty()) return rebuild(fewest_slots);
  if ((entries_.size() + left_ + 1) * 2 <= slots_.size()) return;
  rebuild(std::bit_ceil((live_ + 1) * 3));
}

Value* Dictionary::find(const Value& key) {
  if (slots_.empty()) {
    if (key.is(Type::array)) raise(error::type_mismatch);
    return nullptr;
  }
  const std::uint32_t place = slots_[slot_of(key, hash_of(key))];
  return place == free_slot ? nullptr : &entries_[place - 1].item;
}

Value& Dictionary::add(const Value& key) {
  const std::uint32_t hash = hash_of(key);
  grow();
  const std::size_t slot = slot_of(key, hash);
  entries_.push_back({key, Value(), hash, true});
  slots_[slot] = static_cast<std::uint32_t>(entries_.size());
  ++live_;
  return entries_.back().item;
}

bool Dictionary::remove(const Value& key, Value& key_removed, Value& item_removed) {
  if (!find(key)) return false;
  Entry& entry = entries_[slots_[slot_of(key, hash_of(key))] - 1];
  entry.live = false;
  key_removed = std::move(entry.key);
  item_removed = std::move(entry.item);
  --live_;
  return true;
}

// The entry keeps its place in the order.
void Dictionary::change_key(const Value& from, const Value& to) {
  const std::uint32_t hash = hash_of(to);
  grow();
  const std::size_t left = slot_of(from, hash_of(from));
  const std::size_t slot = slot_of(to, hash);
  const std::uint32_t place = slots_[left];
  slots_[left] = left_slot;
  ++left_;
  slots_[slot] = place;
  Entry& entry = entries_[place - 1];
  entry.key = Value(to);
  entry.hash = hash;
}

void Dictionary::remove_all() {
  std::vector<Entry> removed;
  removed.swap(entries_);
  slots_.clear();
  left_ = 0;
  live_ = 0;
  heap->refund(charged_);
  charged_ = 0;
}

void Dictionary::clear() {
  remove_all();
}

Value Dictionary::list(Machine& machine, bool of_keys) const {
  Ref<Array> result = make_list(machine.heap, live_);
  std::size_t filled = 0;
  for (const Entry& entry : entries_) {
    if (entry.live) result->elements[filled++] = of_keys ? entry.key : entry.item;
  }
  return Value(std::move(result));
}

Value Dictionary::enumerate(Machine& machine) {
  return list(machine, true);
}

namespace {

Dictionary& self(NativeObject& object) {
  return static_cast<Dictionary&>(object);
}

Value add(Machine&, NativeObject& object, Use, Arguments arguments) {
  if (self(object).find(arguments[0])) raise(error::key_exists);
  self(object).add(arguments[0]) = Value(arguments[1]);
  return {};
}

Value exists(Machine&, NativeObject& object, Use, Arguments arguments) {
  return Value::boolean(self(object).find(arguments[0]) != nullptr);
}

Value item(Machine& machine, NativeObject& object, Use use, Arguments arguments) {
  Value* found = self(object).find(arguments[0]);
  if (use == Use::get) return found ? *found : self(object).add(arguments[0]);
  Value value = arguments[1];
  if (use == Use::let && value.is(Type::object)) {
    value = machine.default_value(value);
    found = self(object).find(arguments[0]);
  }
  Value& place = found ? *found : self(object).add(arguments[0]);
  place = std::move(value);
  return {};
}

Value key(Machine&, NativeObject& object, Use, Arguments arguments) {
  if (!self(object).find(arguments[0])) raise(error::element_not_found);
  if (self(object).find(arguments[1])) raise(error::key_exists);
  self(object).change_key(arguments[0], arguments[1]);
  return {};
}

Value keys(Machine& machine, NativeObject& object, Use, Arguments) {
  return self(object).list(machine, true);
}

Value items(Machine& machine, NativeObject& object, Use, Arguments) {
  return self(object).list(machine, false);
}

Value count(Machine&, NativeObject& object, Use, Arguments) {
  return Value::long_integer(static_cast<std::int64_t>(self(object).count()));
}

Value remove(Machine&, NativeObject& object, Use, Arguments arguments) {
  Value removed_key;
  Value removed_item;
  if (!self(object).remove(arguments[0], removed_key, removed_item)) raise(error::element_not_found);
  return {};
}

Value remove_all(Machine&, NativeObject& object, Use, Arguments) {
  self(object).remove_all();
  return {};
}

// The place of a key in the tables that the object has always had: 1201 rows.
Value hash_value(Machine& machine, NativeObject& object, Use, Arguments arguments) {
  constexpr std::uint32_t rows = 1201;
  const Value& key = arguments[0];
  if (key.is(Type::string)) {
    std::uint32_t hash = 0;
    for (const char16_t unit : key.text())
      hash = hash * 17 + (self(object).ignores_case() ? to_lower(unit) : unit);
    return Value::long_integer(hash % rows);
  }
  const auto number = static_cast<float>(key.is(Type::object) ? 0.0 : to_number(machine, key));
  return Value::long_integer(std::bit_cast<std::uint32_t>(number) % rows);
}

Value compare_mode(Machine& machine, NativeObject& object, Use use, Arguments arguments) {
  if (use == Use::get) return Value::long_integer(self(object).ignores_case() ? 1 : 0);
  const std::int64_t mode = to_long(machine, arguments[0]);
  if (self(object).count() > 0 || mode < 0 || mode > 2) raise(error::invalid_call);
  self(object).set_ignores_case(mode == 1);
  return {};
}

constexpr NativeMember dictionary_members[] = {
    {"item", 1, 1, true, true, item},
    {"exists", 1, 1, false, false, exists},
    {"add", 2, 2, false, false, add},
    {"count", 0, 0, false, false, count},
    {"keys", 0, 0, false, false, keys},
    {"items", 0, 0, false, false, items},
    {"key", 1, 1, true, false, key},
    {"remove", 1, 1, false, false, remove},
    {"removeall", 0, 0, false, false, remove_all},
    {"hashval", 1, 1, false, false, hash_value},
    {"comparemode", 0, 0, true, false, compare_mode},
};

}  // namespace

std::span<const NativeMember> Dictionary::members() const {
  return dictionary_members;
}

}  // namespace zrl::vbs
