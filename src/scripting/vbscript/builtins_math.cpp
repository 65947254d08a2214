#include <algorithm>
#include <bit>
#include <cmath>

#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/machine.h"
#include "scripting/vbscript/unicode.h"

namespace zrl::vbs {

namespace {

bool is_whole(const Value& value) {
  return value.is(Type::integer) || value.is(Type::long_integer) || value.is(Type::byte);
}

Value real(double number) {
  if (!std::isfinite(number)) raise(error::overflow);
  return Value::real(number);
}

template <double (*function)(double)>
Value of_number(Machine& machine, Arguments arguments) {
  return real(function(to_number(machine, arguments[0])));
}

Value log(Machine& machine, Arguments arguments) {
  const double number = to_number(machine, arguments[0]);
  if (number <= 0) raise(error::invalid_call);
  return real(std::log(number));
}

Value sqr(Machine& machine, Arguments arguments) {
  const double number = to_number(machine, arguments[0]);
  if (number < 0) raise(error::invalid_call);
  return real(std::sqrt(number));
}

Value abs(Machine& machine, Arguments arguments) {
  Value number = to_numeric(machine, arguments[0]);
  if (number.is(Type::null)) return number;
  return to_number(machine, number) < 0 ? negated(machine, number) : number;
}

template <double (*function)(double)>
Value whole_part(Machine& machine, Arguments arguments) {
  Value number = to_numeric(machine, arguments[0]);
  if (number.is(Type::null) || is_whole(number)) return number;
  if (number.is(Type::currency)) {
    return Value::of(Type::currency, double_to_currency(function(currency_to_double(number.i()))));
  }
  return Value::of(number.type(), function(number.d()));
}

Value sgn(Machine& machine, Arguments arguments) {
  const Value value = to_numeric(machine, arguments[0]);
  const double number = to_number(machine, value);
  return Value::integer(number < 0 ? -1 : number > 0 ? 1 : 0);
}

Value round(Machine& machine, Arguments arguments) {
  Value number = to_numeric(machine, arguments[0]);
  const std::int64_t digits = arguments.has(1) ? to_long(machine, arguments[1]) : 0;
  if (digits < 0) raise(error::invalid_call);
  if (number.is(Type::null) || is_whole(number)) return number;
  if (number.is(Type::currency)) {
    if (digits >= 4) return number;
    const double scale = std::pow(10.0, static_cast<double>(digits));
    return Value::of(Type::currency,
                     double_to_currency(std::nearbyint(currency_to_double(number.i()) * scale) / scale));
  }
  if (digits > 22) raise(error::invalid_call);
  const double scale = std::pow(10.0, static_cast<double>(digits));
  const double scaled = number.d() * scale;
  if (!std::isfinite(scaled) || std::fabs(scaled) > 1e15) return number;
  // What is a tie in decimal notation is one, though the binary number lies a little beside it.
  double rounded = std::nearbyint(scaled);
  const double half = std::floor(scaled) + 0.5;
  if (scaled != half && std::fabs(scaled - half) < std::fabs(scaled) * 2e-16) {
    rounded = 2 * std::nearbyint(half / 2);
    if (std::fabs(rounded - half) > 0.5) rounded = std::nearbyint(half);
  }
  return Value::of(number.type(), rounded / scale);
}

std::u16string digits_of(std::uint64_t number, unsigned shift) {
  constexpr char16_t digits[] = u"0123456789ABCDEF";
  std::u16string text;
  do {
    text.insert(text.begin(), digits[number & ((1U << shift) - 1)]);
    number >>= shift;
  } while (number != 0);
  return text;
}

template <unsigned shift>
Value in_base(Machine& machine, Arguments arguments) {
  Value number = to_numeric(machine, arguments[0]);
  if (number.is(Type::null)) return number;
  const bool narrow = number.is(Type::integer) || number.is(Type::byte);
  const std::int64_t value = to_long(machine, number);
  const std::uint64_t bits = static_cast<std::uint64_t>(value) & (narrow ? 0xffffU : 0xffffffffU);
  return Value(machine.heap.string(digits_of(bits, shift)));
}

Value rgb(Machine& machine, Arguments arguments) {
  std::int64_t color = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    const std::int64_t part = to_long(machine, arguments[i]);
    if (part < 0) raise(error::invalid_call);
    color |= std::min<std::int64_t>(part, 255) << (8 * i);
  }
  return Value::long_integer(color);
}

Value rnd(Machine& machine, Arguments arguments) {
  const Value* argument = arguments.has(0) ? &arguments[0] : nullptr;
  return Value::of(Type::single, machine.random(argument));
}

Value randomize(Machine& machine, Arguments arguments) {
  machine.randomise(arguments.has(0) ? &arguments[0] : nullptr);
  return {};
}

constexpr Builtin functions[] = {
    {"Abs", 1, 1, abs},
    {"Atn", 1, 1, of_number<std::atan>},
    {"Cos", 1, 1, of_number<std::cos>},
    {"Exp", 1, 1, of_number<std::exp>},
    {"Fix", 1, 1, whole_part<std::trunc>},
    {"Int", 1, 1, whole_part<std::floor>},
    {"Log", 1, 1, log},
    {"Round", 1, 2, round},
    {"Sgn", 1, 1, sgn},
    {"Sin", 1, 1, of_number<std::sin>},
    {"Sqr", 1, 1, sqr},
    {"Tan", 1, 1, of_number<std::tan>},
    {"Hex", 1, 1, in_base<4>},
    {"Oct", 1, 1, in_base<3>},
    {"RGB", 3, 3, rgb},
    {"Rnd", 0, 1, rnd},
    {"Randomize", 0, 1, randomize},
};

}  // namespace

std::span<const Builtin> math_functions() {
  return functions;
}

// The generator that the language has always had: 24 bits, a linear congruence.
double Machine::random(const Value* argument) {
  constexpr std::uint32_t mask = 0xffffff;
  const double number = argument ? to_number(*this, *argument) : 1;
  if (number < 0) {
    const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(number));
    random_seed_ = (bits + (bits >> 24)) & mask;
  }
  if (number != 0) random_seed_ = (random_seed_ * 0x43fd43fdU + 0xc39ec3U) & mask;
  return static_cast<double>(static_cast<float>(random_seed_) / 16777216.0F);
}

void Machine::randomise(const Value* seed) {
  const double number =
      seed ? to_number(*this, *seed)
           : static_cast<double>(std::chrono::system_clock::now().time_since_epoch().count() %
                                 86'400'000'000'000) /
                 1e9;
  const auto high = static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(number) >> 32);
  random_seed_ = (random_seed_ & 0xff) | (((high & 0xffff) ^ (high >> 16)) << 8);
}

}  // namespace zrl::vbs
