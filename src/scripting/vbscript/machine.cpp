#include "scripting/vbscript/machine.h"

#include <cmath>

#include "scripting/vbscript/arrays.h"
#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/instructions.h"

// The dispatch jumps to the address of each instruction's code, which is an extension that both
// compilers know.
#pragma GCC diagnostic ignored "-Wpedantic"

namespace zrl::vbs {

namespace {

constexpr std::int64_t least_long = -2147483648LL;
constexpr std::int64_t most_long = 2147483647LL;

// The sub-types of two operands together; see Type.
inline int pair_of(const Value& a, const Value& b) {
  return static_cast<int>(a.type()) | static_cast<int>(b.type());
}

inline bool whole_pair(int pair) {
  return (pair & ~1) == 2;
}

inline bool real_pair(int pair) {
  return pair == 4 || pair == 6 || pair == 7;
}

inline double number_of(const Value& value) {
  return value.is(Type::real) ? value.d() : static_cast<double>(value.i());
}

// The result of whole operands: an Integer as long as both were and it fits, then Long, then Double.
inline void set_whole(Value& target, std::int64_t number, int pair) {
  if (pair == 2 && number == static_cast<std::int16_t>(number)) {
    target.set(Type::integer, number);
  } else if (number >= least_long && number <= most_long) {
    target.set(Type::long_integer, number);
  } else {
    target.set(Type::real, static_cast<double>(number));
  }
}

}  // namespace

void Machine::run(std::size_t bottom) {
  bool handled = false;
  while (true) {
    try {
      // What the error dropped ends before the script goes on.
      if (handled) run_terminations();
      return execute();
    } catch (const Failure& failure) {
      note_place();
      countdown_ -= instructions_an_error_costs;
      if (!handle(failure, bottom)) throw;
      handled = true;
    }
  }
}

void Machine::count_down() {
  countdown_ = instructions_between_checks;
  check_time();
}

// Each instruction: fast for the common sub-types, otherwise through a function of the machine. The
// program counter is saved before anything that may fail or call.
void Machine::execute() {
  static const void* const labels[] = {
#define OPCODE(name, operands, words) &&op_##name,
#include "scripting/vbscript/opcodes.def"
#undef OPCODE
  };
  Frame* f = &frame();
  const Instr* pc = f->pc;
  Value* R = f->base;
  const Value* K = f->proc->constants;

  DISPATCH();

op_load:
  R[pc->a] = K[pc->wide()];
  NEXT(1);
op_copy: {
  const Value& from = R[pc->b].get();
  if (from.counted()) {
    SAVE();
    R[pc->a] = from;
    SETTLE(1);
  }
  R[pc->a] = Value(from);
  NEXT(1);
}
op_refer: {
  Value& from = R[pc->b];
  Value* target = from.is(Type::reference) ? from.reference() : &from;
  R[pc->a] = Value::reference_to(target);
  NEXT(1);
}
op_get_global: {
  Value& from = globals_.values()[pc->b];
  if (static_cast<int>(from.type()) < first_counted) {
    R[pc->a] = from;
  } else {
    R[pc->a] = Value::reference_to(&from);
  }
  NEXT(1);
}
op_refer_global:
  R[pc->a] = Value::reference_to(&globals_.values()[pc->b]);
  NEXT(1);
op_let_global: {
  SAVE();
  let_taken(globals_.values()[pc->a], R[pc->b]);
  SETTLE(1);
}
op_get_field: {
  Value& from = f->me->field(pc->b);
  if (static_cast<int>(from.type()) < first_counted) {
    R[pc->a] = from;
  } else {
    R[pc->a] = Value::reference_to(&from);
  }
  NEXT(1);
}
op_refer_field:
  R[pc->a] = Value::reference_to(&f->me->field(pc->b));
  NEXT(1);
op_let_field: {
  SAVE();
  let_taken(f->me->field(pc->a), R[pc->b]);
  SETTLE(1);
}
op_take:
  R[pc->a] = std::move(R[pc->b]);
  NEXT(1);
op_let:
  if (static_cast<int>(R[pc->a].type()) < static_cast<int>(Type::reference) &&
      static_cast<int>(R[pc->b].type()) < static_cast<int>(Type::reference)) {
    R[pc->a] = Value(R[pc->b]);
    NEXT(1);
  }
  SAVE();
  let(R[pc->a], R[pc->b]);
  SETTLE(1);
op_let_taken: {
  Value& target = R[pc->a];
  Value& from = R[pc->b];
  if (static_cast<int>(target.type()) < static_cast<int>(Type::reference) &&
      static_cast<int>(from.type()) < static_cast<int>(Type::array) && !from.is(Type::reference)) {
    target = std::move(from);
    NEXT(1);
  }
  SAVE();
  let_taken(target, from);
  SETTLE(1);
}
op_set:
  SAVE();
  set(R[pc->a], R[pc->b]);
  SETTLE(1);
op_clear: {
  Value* first = R + pc->a;
  bool counted = false;
  for (Value* value = first; value < first + pc->b; ++value) {
    counted |= static_cast<int>(value->type()) >= first_counted;
    value->clear();
  }
  if (!counted) NEXT(1);
  SETTLE(1);
}
op_me:
  R[pc->a] = f->me ? Value(Ref<Object>(f->me)) : module_object_;
  NEXT(1);

  ARITHMETIC(add, R[pc->c], +, x.i() + y.i())
  ARITHMETIC(subtract, R[pc->c], -, x.i() - y.i())
  ARITHMETIC(multiply, R[pc->c], *, x.i() * y.i())
  ARITHMETIC(add_k, K[pc->c], +, x.i() + y.i())
  ARITHMETIC(subtract_k, K[pc->c], -, x.i() - y.i())
  ARITHMETIC(multiply_k, K[pc->c], *, x.i() * y.i())
  ARITHMETIC_SLOW(add, R[pc->c], add);
  ARITHMETIC_SLOW(subtract, R[pc->c], subtract);
  ARITHMETIC_SLOW(multiply, R[pc->c], multiply);
  ARITHMETIC_SLOW(add_k, K[pc->c], add);
  ARITHMETIC_SLOW(subtract_k, K[pc->c], subtract);
  ARITHMETIC_SLOW(multiply_k, K[pc->c], multiply);

op_divide: {
  const Value& x = R[pc->b];
  const Value& y = R[pc->c];
  const int pair = pair_of(x, y);
  if (whole_pair(pair) || real_pair(pair)) {
    const double result = number_of(x) / number_of(y);
    if (std::isfinite(result)) {
      R[pc->a].set(Type::real, result);
      NEXT(1);
    }
  }
  SAVE();
  R[pc->a] = arithmetic(*this, Operator::divide, R[pc->b], R[pc->c]);
  SETTLE(1);
}

  WHOLE_DIVISION(int_divide, R[pc->c], /, int_divide)
  WHOLE_DIVISION(mod, R[pc->c], %, mod)
  WHOLE_DIVISION(int_divide_k, K[pc->c], /, int_divide)
  WHOLE_DIVISION(mod_k, K[pc->c], %, mod)

op_power:
  SAVE();
  R[pc->a] = arithmetic(*this, Operator::power, R[pc->b], R[pc->c]);
  SETTLE(1);
op_concat:
  SAVE();
  R[pc->a] = concatenation(*this, R + pc->b, pc->c);
  SETTLE(1);
op_append:
  SAVE();
  append(*this, R[pc->a], R[pc->b]);
  SETTLE(1);

  LOGICAL(logical_and, and_, x.i() & y.i())
  LOGICAL(logical_or, or_, x.i() | y.i())
  LOGICAL(logical_xor, xor_, x.i() ^ y.i())
  LOGICAL(logical_eqv, eqv, ~(x.i() ^ y.i()))
  LOGICAL(logical_imp, imp, ~x.i() | y.i())

op_is: {
  SAVE();
  const bool same = is_same_object(R[pc->b], R[pc->c]);
  R[pc->a] = Value::boolean(same);
  SETTLE(1);
}
op_negate: {
  const Value& x = R[pc->b];
  if (x.is(Type::real)) {
    R[pc->a].set(Type::real, -x.d());
    NEXT(1);
  }
  SAVE();
  R[pc->a] = negated(*this, x);
  SETTLE(1);
}
op_plus:
  SAVE();
  R[pc->a] = plus(*this, R[pc->b]);
  SETTLE(1);
op_logical_not: {
  const Value& x = R[pc->b];
  if (x.is(Type::boolean)) {
    R[pc->a].set(Type::boolean, ~x.i());
    NEXT(1);
  }
  SAVE();
  R[pc->a] = vbs::logical_not(*this, x);
  SETTLE(1);
}

  COMPARISON(equal, R[pc->c], ==, equal, false)
  COMPARISON(not_equal, R[pc->c], !=, not_equal, false)
  COMPARISON(less, R[pc->c], <, less, false)
  COMPARISON(greater, R[pc->c], >, greater, false)
  COMPARISON(less_equal, R[pc->c], <=, less_equal, false)
  COMPARISON(greater_equal, R[pc->c], >=, greater_equal, false)
  COMPARISON(equal_k, K[pc->c], ==, equal, true)
  COMPARISON(not_equal_k, K[pc->c], !=, not_equal, true)
  COMPARISON(less_k, K[pc->c], <, less, true)
  COMPARISON(greater_k, K[pc->c], >, greater, true)
  COMPARISON(less_equal_k, K[pc->c], <=, less_equal, true)
  COMPARISON(greater_equal_k, K[pc->c], >=, greater_equal, true)

op_compare_literals: {
  SAVE();
  const int flags = pc[1].wide();
  const Literals literals{(flags & 0x100) != 0, (flags & 0x200) != 0};
  R[pc->a] = comparison(*this, static_cast<Operator>(flags & 0xff), R[pc->b], R[pc->c], literals);
  SETTLE(2);
}
op_case_equal: {
  const Value& x = R[pc->b];
  const Value& y = R[pc->c];
  if (whole_pair(pair_of(x, y))) {
    R[pc->a].set(Type::boolean, std::int64_t{x.i() == y.i() ? -1 : 0});
    NEXT(2);
  }
  SAVE();
  const int flags = pc[1].wide();
  const bool fits = fits_label(*this, x, y, Literals{(flags & 1) != 0, (flags & 2) != 0});
  R[pc->a] = Value::boolean(fits);
  SETTLE(2);
}

op_test: {
  SAVE();
  const bool truth = to_condition(*this, R[pc->b]);
  R[pc->a] = Value::boolean(truth);
  SETTLE(1);
}
op_jump:
  pc = f->proc->code.data() + pc->wide();
  DISPATCH();
op_loop:
  if (--countdown_ < 0) {
    SAVE();
    count_down();
  }
  pc = f->proc->code.data() + pc->wide();
  DISPATCH();

  CONDITIONAL(jump_true, true)
  CONDITIONAL(jump_false, false)

op_jump_false_taken: {
  Value& x = R[pc->a];
  bool truth = false;
  if (x.is(Type::boolean)) {
    truth = x.i() != 0;
  } else {
    SAVE();
    truth = to_condition(*this, x);
    x.clear();
  }
  const Instr* const next = truth ? pc + 1 : f->proc->code.data() + pc->wide();
  if (memory_.has_terminations()) {
    f->pc = next;
    run_terminations();
    RELOAD();
    DISPATCH();
  }
  pc = next;
  DISPATCH();
}

  UNLESS(unless_equal, R[pc->b], ==, equal, false)
  UNLESS(unless_not_equal, R[pc->b], !=, not_equal, false)
  UNLESS(unless_less, R[pc->b], <, less, false)
  UNLESS(unless_greater, R[pc->b], >, greater, false)
  UNLESS(unless_less_equal, R[pc->b], <=, less_equal, false)
  UNLESS(unless_greater_equal, R[pc->b], >=, greater_equal, false)
  UNLESS(unless_equal_k, K[pc->b], ==, equal, true)
  UNLESS(unless_not_equal_k, K[pc->b], !=, not_equal, true)
  UNLESS(unless_less_k, K[pc->b], <, less, true)
  UNLESS(unless_greater_k, K[pc->b], >, greater, true)
  UNLESS(unless_less_equal_k, K[pc->b], <=, less_equal, true)
  UNLESS(unless_greater_equal_k, K[pc->b], >=, greater_equal, true)

op_for_prepare: {
  SAVE();
  const bool enters = prepare_for(R[pc->a], R + pc->b, R[pc->c]);
  if (enters) SETTLE(2);
  pc = f->proc->code.data() + pc[1].wide();
  DISPATCH();
}
op_for_next: {
  if (--countdown_ < 0) {
    SAVE();
    count_down();
  }
  Value& variable = R[pc->a];
  const Value& limit = R[pc->b];
  const Value& step = R[pc->b + 1];
  const int pair = pair_of(variable, step);
  if (whole_pair(pair) && (limit.is(Type::integer) || limit.is(Type::long_integer)) &&
      static_cast<int>(step.type()) != 0) {
    const std::int64_t number = variable.i() + step.i();
    set_whole(variable, number, pair);
    if (step.i() >= 0 ? number <= limit.i() : number >= limit.i()) {
      pc = f->proc->code.data() + pc[1].wide();
      DISPATCH();
    }
    NEXT(2);
  }
  SAVE();
  if (!next_for(variable, R + pc->b)) NEXT(2);
  pc = f->proc->code.data() + pc[1].wide();
  DISPATCH();
}
op_each_prepare:
  SAVE();
  prepare_each(R + pc->a, R[pc->b]);
  SETTLE(1);
op_each_next: {
  if (--countdown_ < 0) {
    SAVE();
    count_down();
  }
  SAVE();
  const bool more = next_each(R[pc->a], R + pc->b);
  const Instr* next = more ? f->proc->code.data() + pc[1].wide() : pc + 2;
  if (memory_.has_terminations()) {
    f->pc = next;
    run_terminations();
    RELOAD();
    DISPATCH();
  }
  pc = next;
  DISPATCH();
}

op_index: {
  const Value& callee = R[pc->b].get();
  const Value& place = R[pc->c];
  if (callee.is(Type::array) && (place.is(Type::integer) || place.is(Type::long_integer))) {
    const Array& array = *callee.array();
    const auto position = static_cast<std::uint64_t>(place.i());
    if (array.dimensions == 1 && position < array.count) {
      const Value& element = array.elements[position];
      if (!element.counted()) {
        R[pc->a] = Value(element);
        NEXT(1);
      }
      R[pc->a] = element;
      SETTLE(1);
    }
  }
  SAVE();
  index(R[pc->a], R[pc->b], R[pc->c]);
  SETTLE(1);
}
op_index_many:
  SAVE();
  index_many(R + pc->a, pc->b);
  SETTLE(1);
op_refer_index:
  SAVE();
  refer_index(R + pc->a, pc->b, R[pc->c]);
  SETTLE(1);

  LET_INDEX(let_index, R[pc->c])
  LET_INDEX(let_index_k, K[pc->c])
op_put_index:
  SAVE();
  put_index(R + pc->a, pc->b, pc->c != 0);
  SETTLE(1);

op_call: {
  if (--countdown_ < 0) {
    SAVE();
    count_down();
  }
  const auto symbol = static_cast<SymbolId>(pc[1].wide());
  const GlobalName& name = globals_.known(symbol);
  const Proc* proc = name.procedure;
  Value* const base = R + pc->a;
  // A plain procedure, called from one: its registers begin at the window.
  if (name.kind == GlobalName::Kind::procedure && proc->plain && proc->parameters == pc->b &&
      !f->proc->global_frame && depth_ + 1 < limits_.call_depth &&
      stack_end_ - base >= static_cast<std::ptrdiff_t>(proc->registers)) {
    base[0].clear();
    Value* const locals_end = base + proc->first_temp;
    for (Value* value = base + pc->b + 1; value < locals_end; ++value) value->clear();
    f->pc = pc + 2;
    f = &frames_[++depth_];
    f->proc = proc;
    f->base = base;
    f->top = base + proc->registers;
    f->me = nullptr;
    f->result = nullptr;
    f->extra = nullptr;
    f->owned = nullptr;
    f->resume_next = f->discard = f->termination = f->entry = false;
    f->plain = true;
    pc = proc->code.data();
    R = base;
    K = proc->constants;
    DISPATCH();
  }
  SAVE();
  call_symbol(base, pc->b, symbol);
  SETTLE(2);
}
op_call_builtin:
  SAVE();
  call_builtin(R + pc->a, pc->b, static_cast<std::uint32_t>(pc[1].wide()));
  SETTLE(2);
op_call_name:
  SAVE();
  call_unresolved(R + pc->a, pc->b, pc->c, static_cast<SymbolId>(pc[1].wide()));
  SETTLE(2);
op_get_name:
  SAVE();
  get_unresolved(R[pc->a], pc->b, static_cast<SymbolId>(pc[1].wide()));
  SETTLE(2);
op_refer_name_or_get: {
  SAVE();
  const auto symbol = static_cast<SymbolId>(pc[1].wide());
  if (R[pc->b].is(Type::empty)) {
    Value* const global = globals_.existing(symbols_.canonical(symbol));
    if (global && global != &R[pc->b]) R[pc->b] = Value::reference_to(global);
  }
  Value& variable = R[pc->b].get();
  const GlobalName* name = globals_.find(symbols_.canonical(symbol));
  const bool other =
      name && name->kind != GlobalName::Kind::undefined && name->kind != GlobalName::Kind::variable;
  if (other && variable.is(Type::empty)) {
    get_unresolved(R[pc->a], pc->b, symbol);
  } else {
    R[pc->a] = Value::reference_to(&variable);
  }
  SETTLE(2);
}
op_refer_name: {
  SAVE();
  R[pc->a] = Value::reference_to(&named_variable(static_cast<SymbolId>(pc[1].wide())));
  NEXT(2);
}
op_get_member:
  SAVE();
  get_member(R[pc->a], R[pc->b], static_cast<SymbolId>(pc[1].wide()), pc->a);
  SETTLE(2);
op_call_member:
  if (--countdown_ < 0) {
    SAVE();
    count_down();
  }
  SAVE();
  call_member(R + pc->a, pc->b, static_cast<SymbolId>(pc[1].wide()), false);
  SETTLE(2);
op_call_own:
  if (--countdown_ < 0) {
    SAVE();
    count_down();
  }
  SAVE();
  call_member(R + pc->a, pc->b, static_cast<SymbolId>(pc[1].wide()), true);
  SETTLE(2);
op_put_member:
  SAVE();
  put_member(R + pc->a, pc->b, static_cast<SymbolId>(pc[1].wide()), pc->c != 0, false);
  SETTLE(2);
op_put_own:
  SAVE();
  put_member(R + pc->a, pc->b, static_cast<SymbolId>(pc[1].wide()), pc->c != 0, true);
  SETTLE(2);
op_new_object:
  SAVE();
  new_instance(R[pc->a], static_cast<SymbolId>(pc[1].wide()));
  SETTLE(2);
op_finish:
  if (f->plain) {
    Value* const end = R + f->proc->registers;
    for (Value* value = R + 1; value < end; ++value) {
      if (static_cast<int>(value->type()) >= first_counted) value->clear();
    }
    --depth_;
    if (memory_.has_terminations()) run_terminations();
    RELOAD();
    DISPATCH();
  }
  SAVE();
  if (finish()) return;
  if (memory_.has_terminations()) run_terminations();
  RELOAD();
  DISPATCH();

op_on_error:
  on_error(pc->a != 0);
  NEXT(1);
op_dim:
  SAVE();
  dim(R[pc->a], R + pc->b, pc->c);
  SETTLE(1);
op_redim:
  SAVE();
  redim(R[pc->a], R + pc->b, pc->c, false);
  SETTLE(1);
op_redim_preserve:
  SAVE();
  redim(R[pc->a], R + pc->b, pc->c, true);
  SETTLE(1);
op_erase:
  SAVE();
  erase(memory_, R[pc->a].get());
  SETTLE(1);
op_fail:
  SAVE();
  fail(pc->a, static_cast<SymbolId>(pc[1].wide()));
op_execute:
  SAVE();
  run_text(R[pc->a], pc->b != 0);
  SETTLE(1);
op_evaluate:
  SAVE();
  evaluate_text(R[pc->b], R[pc->a]);
  SETTLE(1);
}

}  // namespace zrl::vbs
