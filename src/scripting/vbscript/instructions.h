#pragma once

// How Machine::execute is written: what several instructions have in common. For machine.cpp alone, whose
// variables f (the frame), pc, R (registers) and K (constants) they use.

// NOLINTBEGIN(bugprone-macro-parentheses)

#define DISPATCH() goto* labels[static_cast<int>(pc->op)]
#define NEXT(words) \
  do {              \
    pc += (words);  \
    DISPATCH();     \
  } while (false)
#define SAVE() f->pc = pc
#define RELOAD()            \
  do {                      \
    f = &frame();           \
    pc = f->pc;             \
    R = f->base;            \
    K = f->proc->constants; \
  } while (false)
// After what may have pushed a frame, or dropped an object that has a Class_Terminate.
#define SETTLE(words)                 \
  do {                                \
    if (&frame() != f) {              \
      f->pc = pc + (words);           \
      RELOAD();                       \
      DISPATCH();                     \
    }                                 \
    if (memory_.has_terminations()) { \
      f->pc = pc + (words);           \
      run_terminations();             \
      RELOAD();                       \
      DISPATCH();                     \
    }                                 \
    NEXT(words);                      \
  } while (false)

// + - *: in place for whole numbers and Doubles, else at the label slow_NAME.
#define ARITHMETIC(name, right, op, whole)                \
  op_##name : {                                           \
    const Value& x = R[pc->b];                            \
    const Value& y = right;                               \
    const int pair = pair_of(x, y);                       \
    if (whole_pair(pair)) {                               \
      set_whole(R[pc->a], whole, pair);                   \
      NEXT(1);                                            \
    }                                                     \
    if (real_pair(pair)) {                                \
      const double result = number_of(x) op number_of(y); \
      if (std::isfinite(result)) {                        \
        R[pc->a].set(Type::real, result);                 \
        NEXT(1);                                          \
      }                                                   \
    }                                                     \
    goto slow_##name;                                     \
  }

#define ARITHMETIC_SLOW(name, right, operation)                       \
  slow_##name : SAVE();                                               \
  R[pc->a] = arithmetic(*this, Operator::operation, R[pc->b], right); \
  SETTLE(1)

// \ and Mod; divisions of 32 bits are the quicker ones.
#define WHOLE_DIVISION(name, right, op, operation)                                     \
  op_##name : {                                                                        \
    const Value& x = R[pc->b];                                                         \
    const Value& y = right;                                                            \
    const int pair = pair_of(x, y);                                                    \
    if (whole_pair(pair) && y.i() != 0) {                                              \
      if (x.i() >= 0 && x.i() <= most_long && y.i() > 0 && y.i() <= most_long) {       \
        set_whole(R[pc->a],                                                            \
                  static_cast<std::int64_t>(static_cast<std::uint32_t>(x.i())          \
                                                op static_cast<std::uint32_t>(y.i())), \
                  pair);                                                               \
      } else {                                                                         \
        set_whole(R[pc->a], x.i() op y.i(), pair);                                     \
      }                                                                                \
      NEXT(1);                                                                         \
    }                                                                                  \
    SAVE();                                                                            \
    R[pc->a] = arithmetic(*this, Operator::operation, R[pc->b], right);                \
    SETTLE(1);                                                                         \
  }

// Two operands of one sub-type keep it.
#define LOGICAL(name, operation, expression)                                                                \
  op_##name : {                                                                                             \
    const Value& x = R[pc->b];                                                                              \
    const Value& y = R[pc->c];                                                                              \
    if (x.type() == y.type() && (x.is(Type::boolean) || x.is(Type::integer) || x.is(Type::long_integer))) { \
      R[pc->a].set(x.type(), expression);                                                                   \
      NEXT(1);                                                                                              \
    }                                                                                                       \
    SAVE();                                                                                                 \
    R[pc->a] = logical(*this, Operator::operation, x, y);                                                   \
    SETTLE(1);                                                                                              \
  }

// True or False into a register, Null through the function.
#define COMPARISON(name, right, sign, operation, right_literal)                                         \
  op_##name : {                                                                                         \
    const Value& x = R[pc->b];                                                                          \
    const Value& y = right;                                                                             \
    const int pair = pair_of(x, y);                                                                     \
    if (whole_pair(pair)) {                                                                             \
      R[pc->a].set(Type::boolean, std::int64_t{x.i() sign y.i() ? -1 : 0});                             \
      NEXT(1);                                                                                          \
    }                                                                                                   \
    if (real_pair(pair)) {                                                                              \
      R[pc->a].set(Type::boolean, std::int64_t{number_of(x) sign number_of(y) ? -1 : 0});               \
      NEXT(1);                                                                                          \
    }                                                                                                   \
    SAVE();                                                                                             \
    R[pc->a] = comparison(*this, Operator::operation, R[pc->b], right, Literals{false, right_literal}); \
    SETTLE(1);                                                                                          \
  }

// Jumps where the condition is as wanted.
#define CONDITIONAL(name, wanted)           \
  op_##name : {                             \
    const Value& x = R[pc->a];              \
    bool truth = false;                     \
    if (x.is(Type::boolean)) {              \
      truth = x.i() != 0;                   \
    } else {                                \
      SAVE();                               \
      truth = to_condition(*this, x);       \
    }                                       \
    if (truth != (wanted)) NEXT(1);         \
    pc = f->proc->code.data() + pc->wide(); \
    DISPATCH();                             \
  }

// Jumps where the comparison does not hold.
#define UNLESS(name, right, sign, operation, right_literal)                   \
  op_##name : {                                                               \
    const Value& x = R[pc->a];                                                \
    const Value& y = right;                                                   \
    const int pair = pair_of(x, y);                                           \
    bool truth = false;                                                       \
    if (whole_pair(pair)) {                                                   \
      truth = x.i() sign y.i();                                               \
    } else if (real_pair(pair)) {                                             \
      truth = number_of(x) sign number_of(y);                                 \
    } else {                                                                  \
      SAVE();                                                                 \
      const int order = compare(*this, x, y, Literals{false, right_literal}); \
      truth = order != unordered && holds(Operator::operation, order);        \
      if (pc->c != 0) {                                                       \
        if ((pc->c & 1) != 0) R[pc->a].clear();                               \
        if ((pc->c & 2) != 0) R[pc->b].clear();                               \
        if (memory_.has_terminations()) {                                     \
          f->pc = truth ? pc + 2 : f->proc->code.data() + pc[1].wide();       \
          run_terminations();                                                 \
          RELOAD();                                                           \
          DISPATCH();                                                         \
        }                                                                     \
      }                                                                       \
    }                                                                         \
    if (truth) NEXT(2);                                                       \
    pc = f->proc->code.data() + pc[1].wide();                                 \
    DISPATCH();                                                               \
  }

// An element of a list that nobody else shares; neither what it was nor what it becomes is an object or
// array.
#define LET_INDEX(name, assigned)                                                                         \
  op_##name : {                                                                                           \
    Value& callee = R[pc->a].get();                                                                       \
    const Value& place = R[pc->b];                                                                        \
    const Value& value = assigned;                                                                        \
    if (callee.is(Type::array) && (place.is(Type::integer) || place.is(Type::long_integer)) &&            \
        static_cast<int>(value.type()) <= static_cast<int>(Type::string) && !value.is(Type::reference)) { \
      const Array& array = *callee.array();                                                               \
      const auto position = static_cast<std::uint64_t>(place.i());                                        \
      if (array.dimensions == 1 && position < array.count && array.references <= 1 + array.locks) {       \
        Value& element = array.elements[position];                                                        \
        if (static_cast<int>(element.type()) <= static_cast<int>(Type::string)) {                         \
          element = Value(value);                                                                         \
          NEXT(1);                                                                                        \
        }                                                                                                 \
      }                                                                                                   \
    }                                                                                                     \
    SAVE();                                                                                               \
    let_index(R[pc->a], R[pc->b], assigned);                                                              \
    SETTLE(1);                                                                                            \
  }

// NOLINTEND(bugprone-macro-parentheses)
