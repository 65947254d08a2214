#include <deque>
#include <optional>

#include "scripting/vbscript/random_program.h"

// The model: what each statement does, and where the script goes on when a part of it fails.
namespace zrl::vbs::test {

namespace {

struct Error {
  int number;
  std::size_t line;
};
struct TooLong {};

enum class Flow { next, exit_for, exit_do, exit_procedure };

// A number, a text, or Empty.
struct Item {
  enum class Kind { empty, number, text };
  Kind kind = Kind::empty;
  int number = 0;

  std::string shown() const {
    if (kind == Kind::empty) return "";
    return kind == Kind::number ? std::to_string(number) : "t" + std::to_string(number);
  }
};

class Model {
 public:
  Model(const std::vector<Procedure>& procedures, std::vector<std::string>& output)
      : procedures_(procedures), output_(output), counters_(1000) {}

  void run(const Statements& main) {
    Frame frame;
    frame_ = &frame;
    try {
      block(main);
    } catch (const Error& error) {
      output_.push_back("error " + std::to_string(error.number) + " in line " + std::to_string(error.line));
    }
  }

 private:
  struct Frame {
    bool resumes = false;
    bool object = true;  // of the innermost With
    Item own;
    Item result;
    Item unnamed;  // an argument that is no variable
    Item* parameter = nullptr;
  };

  Item& variable(int number) {
    if (number >= first_counter) return counters_[static_cast<std::size_t>(number - first_counter)];
    if (number == own_variable) return frame_->own;
    if (number == parameter) return *frame_->parameter;
    return globals_[number];
  }

  [[noreturn]] void fail(int number) const { throw Error{number, line_}; }

  int number_of(const Item& item) const {
    if (item.kind == Item::Kind::text) fail(13);
    return item.number;
  }

  Item evaluate(const Expression& expr) {
    using Kind = Expression::Kind;
    switch (expr.kind) {
      case Kind::number:
        return {Item::Kind::number, expr.number};
      case Kind::text:
        return {Item::Kind::text, expr.number};
      case Kind::variable:
        return variable(expr.number);
      case Kind::failure:
        fail(failings[static_cast<std::size_t>(expr.number)].error);
      case Kind::function:
        return call(expr.number, expr.parts[0]);
      case Kind::method:
        return call(expr.number, expr.parts[0], !frame_->object);
      default:
        break;
    }
    const Item left = evaluate(expr.parts[0]);
    const Item right = evaluate(expr.parts[1]);
    if (expr.kind == Kind::less || expr.kind == Kind::equal) {
      const int order = compare(left, right, expr);
      return {Item::Kind::number, (expr.kind == Kind::less ? order < 0 : order == 0) ? -1 : 0};
    }
    const int a = number_of(left);
    const int b = number_of(right);
    if (expr.kind == Kind::sum) return {Item::Kind::number, (a + b) % 9};
    if (b == 0) fail(11);
    return {Item::Kind::number, a / b};
  }

  // A text is greater than any number, unless that is a literal, which wants a number of the text.
  int compare(const Item& left, const Item& right, const Expression& expr) const {
    const bool left_text = left.kind == Item::Kind::text;
    const bool right_text = right.kind == Item::Kind::text;
    if (left_text == right_text) return left.number - right.number;
    const Expression& other = expr.parts[left_text ? 1 : 0];
    if (other.kind == Expression::Kind::number) fail(13);
    return left_text ? 1 : -1;
  }

  bool is_true(const Expression& condition) { return evaluate(condition).number != 0; }

  Item call(int number, const Expression& argument, bool of_nothing = false) {
    const Procedure& procedure = procedures_[static_cast<std::size_t>(number)];
    Frame frame;
    if (argument.kind == Expression::Kind::variable) {
      frame.parameter = &variable(argument.number);
    } else {
      frame.unnamed = evaluate(argument);
      frame.parameter = &frame.unnamed;
    }
    if (of_nothing) fail(424);
    Frame* const caller = frame_;
    const std::size_t line = line_;
    frame_ = &frame;
    try {
      block(procedure.body);
    } catch (...) {
      frame_ = caller;
      throw;
    }
    frame_ = caller;
    line_ = line;
    return frame.result;
  }

  // Whether the part of a statement succeeded. An error that is resumed is in Err afterwards.
  template <class Action>
  bool attempt(std::size_t line, Action action) {
    if (++steps_ > 5000) throw TooLong();
    line_ = line;
    try {
      action();
      return true;
    } catch (const Error& error) {
      if (!frame_->resumes) throw;
      error_ = error.number;
      return false;
    }
  }

  Flow block(const Statements& statements) {
    for (const Statement& statement : statements) {
      const Flow flow = run(statement);
      if (flow != Flow::next) return flow;
    }
    return Flow::next;
  }

  Flow run(const Statement& s) {
    using Kind = Statement::Kind;
    switch (s.kind) {
      case Kind::if_:
      case Kind::one_line_if:
        return run_if(s);
      case Kind::select:
        return run_select(s);
      case Kind::for_:
        return run_for(s);
      case Kind::for_each:
        return run_for_each(s);
      case Kind::do_while:
      case Kind::do_until:
      case Kind::while_:
      case Kind::loop_while:
        return run_do(s);
      case Kind::with: {
        const bool outer = frame_->object;
        frame_->object = !s.flag;
        if (s.flag) attempt(s.line, [&] { fail(424); });
        const Flow flow = block(s.body);
        frame_->object = outer;
        return flow;
      }
      case Kind::exit_for:
        return Flow::exit_for;
      case Kind::exit_do:
        return Flow::exit_do;
      case Kind::exit_procedure:
        return Flow::exit_procedure;
      default:
        attempt(s.line, [&] { simple(s); });
        return Flow::next;
    }
  }

  void simple(const Statement& s) {
    using Kind = Statement::Kind;
    switch (s.kind) {
      case Kind::echo: {
        std::string line = std::to_string(s.number);
        for (const Expression& part : s.parts) line += " " + evaluate(part).shown();
        output_.push_back(line);
        return;
      }
      case Kind::echo_error:
        output_.push_back("Err " + std::to_string(error_));
        return;
      case Kind::assign: {
        const Item item = evaluate(s.parts[0]);
        variable(s.number) = item;
        return;
      }
      case Kind::return_value: {
        const Item item = evaluate(s.parts[0]);
        frame_->result = item;
        return;
      }
      case Kind::call:
        call(s.number, s.parts[0]);
        return;
      case Kind::raise:
        fail(s.number);
      case Kind::resume_next:
      case Kind::no_resume:
        frame_->resumes = s.kind == Kind::resume_next;
        error_ = 0;
        return;
      default:
        error_ = 0;
    }
  }

  // A condition that fails is taken.
  Flow run_if(const Statement& s) {
    for (const Clause& clause : s.clauses) {
      bool enters = true;
      if (!clause.tests.empty()) attempt(clause.line, [&] { enters = is_true(clause.tests[0]); });
      if (enters) return block(clause.body);
    }
    return Flow::next;
  }

  Flow run_select(const Statement& s) {
    Item value;
    if (!attempt(s.line, [&] { value = evaluate(s.parts[0]); })) return Flow::next;
    for (const Clause& clause : s.clauses) {
      bool enters = clause.tests.empty();
      for (const Expression& test : clause.tests) {
        if (enters) break;
        enters = !attempt(clause.line, [&] { enters = same(value, evaluate(test)); }) || enters;
      }
      if (enters) return block(clause.body);
    }
    return Flow::next;
  }

  // Texts are no numbers here, so that they differ from all of these; Empty is 0 and "".
  static bool same(const Item& value, const Item& label) {
    if (value.kind == Item::Kind::text || label.kind == Item::Kind::text) {
      return value.kind == label.kind && value.number == label.number;
    }
    return value.number == label.number;
  }

  // What failed at its head runs once, and fails again at its end.
  std::optional<Flow> run_once(const Statement& s, int error) {
    const Flow flow = block(s.body);
    if (flow == Flow::exit_for) return Flow::next;
    if (flow != Flow::next) return flow;
    attempt(s.end_line, [&] { fail(error); });
    return Flow::next;
  }

  Flow run_for(const Statement& s) {
    Item& counter = variable(s.number);
    int to = 0;
    int step = 1;
    const bool begun = attempt(s.line, [&] {
      const Item first = evaluate(s.parts[0]);
      const Item last = evaluate(s.parts[1]);
      if (s.parts.size() > 2) step = number_of(evaluate(s.parts[2]));
      const int from = number_of(first);
      to = number_of(last);
      counter = {Item::Kind::number, from};
    });
    if (!begun) return *run_once(s, 92);
    while (step >= 0 ? counter.number <= to : counter.number >= to) {
      const Flow flow = block(s.body);
      if (flow == Flow::exit_for) return Flow::next;
      if (flow != Flow::next) return flow;
      counter.number += step;
    }
    return Flow::next;
  }

  Flow run_for_each(const Statement& s) {
    std::vector<Item> items;
    const bool begun = attempt(s.line, [&] {
      if (s.parts[0].kind != Expression::Kind::array) {
        evaluate(s.parts[0]);
        fail(451);
      }
      for (const Expression& part : s.parts[0].parts) items.push_back(evaluate(part));
    });
    if (!begun) return *run_once(s, 451);
    for (const Item& item : items) {
      variable(s.number) = item;
      const Flow flow = block(s.body);
      if (flow == Flow::exit_for) return Flow::next;
      if (flow != Flow::next) return flow;
    }
    variable(s.number) = {};
    return Flow::next;
  }

  Flow run_do(const Statement& s) {
    const bool at_end = s.kind == Statement::Kind::loop_while;
    const bool until = s.kind == Statement::Kind::do_until;
    while (true) {
      bool goes_on = true;
      if (!at_end) attempt(s.line, [&] { goes_on = is_true(s.parts[0]) != until; });
      if (!goes_on) return Flow::next;
      const Flow flow = block(s.body);
      if (flow == Flow::exit_do && s.kind != Statement::Kind::while_) return Flow::next;
      if (flow != Flow::next) return flow;
      // One that fails at the end does not go round again.
      if (at_end && !attempt(s.end_line, [&] { goes_on = is_true(s.parts[0]); })) return Flow::next;
      if (!goes_on) return Flow::next;
    }
  }

  const std::vector<Procedure>& procedures_;
  std::vector<std::string>& output_;
  Item globals_[own_variable];
  std::deque<Item> counters_;
  Frame* frame_ = nullptr;
  int error_ = 0;
  std::size_t line_ = 0;
  int steps_ = 0;
};

}  // namespace

bool run_model(const std::vector<Procedure>& procedures, const Statements& main,
               std::vector<std::string>& output) {
  try {
    Model(procedures, output).run(main);
    return true;
  } catch (const TooLong&) {
    return false;
  }
}

}  // namespace zrl::vbs::test
