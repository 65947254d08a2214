#pragma once

#include "scripting/vbscript/ast.h"
#include "scripting/vbscript/context.h"

// What operators do, for every pair of sub-types; the machine has its own short ways for the common ones.
// References are looked through, objects are asked for their default value.
namespace zrl::vbs {

Value arithmetic(Context& context, Operator op, const Value& left, const Value& right);
Value logical(Context& context, Operator op, const Value& left, const Value& right);
Value negated(Context& context, const Value& value);
Value logical_not(Context& context, const Value& value);
Value plus(Context& context, const Value& value);
bool is_same_object(const Value& left, const Value& right);

// Which operands of a comparison are literals: a literal decides between text and number.
struct Literals {
  bool left = false;
  bool right = false;
};

// Below, at or above 0; `unordered` where an operand is Null.
inline constexpr int unordered = 2;
int compare(Context& context, const Value& left, const Value& right, Literals literals);
// True, False or Null.
Value comparison(Context& context, Operator op, const Value& left, const Value& right, Literals literals);
bool holds(Operator op, int order);
// Whether a label of Select Case is the value; a text and a number that it does not stand for are not.
bool fits_label(Context& context, const Value& value, const Value& label, Literals literals);

// The parts as one string; Null where all are Null.
Value concatenation(Context& context, const Value* parts, std::size_t count);
// variable = variable & value, in place where nobody else has the string.
void append(Context& context, Value& variable, const Value& value);

}  // namespace zrl::vbs
