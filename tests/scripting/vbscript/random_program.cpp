#include "scripting/vbscript/random_program.h"

#include <utility>

namespace zrl::vbs::test {

const std::array<Failing, 9> failings = {{{"CInt(\"x\")", 13},
                                          {"(1 \\ 0)", 11},
                                          {"list(9)", 9},
                                          {"thing.Nope", 438},
                                          {"nix.Value", 424},
                                          {"Unknown_(1)", 13},
                                          {"Left(\"a\", -1)", 5},
                                          {"CInt(Null)", 94},
                                          {"CInt(40000)", 6}}};

namespace {

constexpr int procedure_count = 5;
constexpr int deepest = 3;

std::string variable_name(int number) {
  if (number == own_variable) return "own";
  if (number == parameter) return "p";
  return (number < first_counter ? "g" : "c") + std::to_string(number);
}

Expression number(int n) {
  return {Expression::Kind::number, n};
}

Expression of_variable(int n) {
  return {Expression::Kind::variable, n};
}

bool calls(const Expression& expr) {
  if (expr.kind == Expression::Kind::function || expr.kind == Expression::Kind::method) return true;
  for (const Expression& part : expr.parts) {
    if (calls(part)) return true;
  }
  return false;
}

}  // namespace

std::string shortened(const std::string& line) {
  if (!line.starts_with("error ")) return line;
  const std::size_t open = line.find('(');
  const std::size_t comma = line.find(',', open);
  if (comma == line.npos) return line;
  return line.substr(0, open) + "in line " + line.substr(open + 1, comma - open - 1);
}

// Writes the tree down, and into it the lines where things stand.
class RandomProgram::Writer {
 public:
  explicit Writer(std::vector<Procedure>& procedures) : procedures_(procedures) {}

  std::string write(Statements& main) {
    line("Dim list(2), nix, g0, g1, g2, g3");
    line("Set nix = Nothing : Set thing = New Thing_");
    for (std::size_t i = 0; i < procedures_.size(); ++i) {
      if (!procedures_[i].is_method) procedure(i);
    }
    line("Class Thing_");
    for (std::size_t i = 0; i < procedures_.size(); ++i) {
      if (procedures_[i].is_method) procedure(i);
    }
    line("End Class");
    block(main);
    return std::move(text_);
  }

 private:
  void line(const std::string& text) {
    text_ += std::string(indent_, ' ') + text + "\n";
    ++line_;
  }

  void procedure(std::size_t number) {
    Procedure& procedure = procedures_[number];
    current_ = &procedure;
    name_ = name(static_cast<int>(number));
    const std::string word = procedure.is_function ? "Function" : "Sub";
    line(word + " " + name_ + "(p)");
    line("  Dim own");
    block(procedure.body);
    line("End " + word);
  }

  std::string name(int number) const {
    const Procedure& procedure = procedures_[static_cast<std::size_t>(number)];
    return (procedure.is_method ? "M" : procedure.is_function ? "F" : "S") + std::to_string(number);
  }

  std::string shown(const Expression& expr) const {
    using Kind = Expression::Kind;
    const auto part = [&](std::size_t i) { return shown(expr.parts[i]); };
    switch (expr.kind) {
      case Kind::number:
        return std::to_string(expr.number);
      case Kind::text:
        return "\"t" + std::to_string(expr.number) + "\"";
      case Kind::variable:
        return variable_name(expr.number);
      case Kind::sum:
        return "(" + part(0) + " + " + part(1) + ") Mod 9";
      case Kind::quotient:
        return "(" + part(0) + ") \\ (" + part(1) + ")";
      case Kind::less:
        return part(0) + " < " + part(1);
      case Kind::equal:
        return part(0) + " = " + part(1);
      case Kind::function:
        return name(expr.number) + "(" + part(0) + ")";
      case Kind::method:
        return "." + name(expr.number) + "(" + part(0) + ")";
      case Kind::failure:
        return failings[static_cast<std::size_t>(expr.number)].text;
      case Kind::array:
        break;
    }
    std::string list;
    for (const Expression& item : expr.parts) list += (list.empty() ? "" : ", ") + shown(item);
    return "Array(" + list + ")";
  }

  void block(Statements& statements) {
    indent_ += 2;
    for (Statement& s : statements) statement(s);
    indent_ -= 2;
  }

  // What stands on one line.
  std::string simple(const Statement& s) const {
    using Kind = Statement::Kind;
    switch (s.kind) {
      case Kind::echo:
        return "WScript.Echo " + std::to_string(s.number) + (s.parts.empty() ? "" : ", " + shown(s.parts[0]));
      case Kind::echo_error:
        return "WScript.Echo \"Err\", Err.Number";
      case Kind::assign:
        return variable_name(s.number) + " = " + shown(s.parts[0]);
      case Kind::return_value:
        return name_ + " = " + shown(s.parts[0]);
      case Kind::call:
        return s.flag ? "Call " + name(s.number) + "(" + shown(s.parts[0]) + ")"
                      : name(s.number) + " " + shown(s.parts[0]);
      case Kind::exit_for:
        return "Exit For";
      case Kind::exit_do:
        return "Exit Do";
      case Kind::exit_procedure:
        return current_->is_function ? "Exit Function" : "Exit Sub";
      case Kind::resume_next:
        return "On Error Resume Next";
      case Kind::no_resume:
        return "On Error GoTo 0";
      case Kind::clear:
        return "Err.Clear";
      default:
        return "Err.Raise " + std::to_string(s.number);
    }
  }

  std::string simple(Statements& statements) {
    std::string text;
    for (Statement& s : statements) {
      s.line = line_;
      text += (text.empty() ? "" : " : ") + simple(s);
    }
    return text;
  }

  void statement(Statement& s) {
    using Kind = Statement::Kind;
    s.line = line_;
    switch (s.kind) {
      case Kind::if_:
        return if_statement(s);
      case Kind::one_line_if: {
        for (Clause& clause : s.clauses) clause.line = line_;
        std::string text = "If " + shown(s.clauses[0].tests[0]) + " Then " + simple(s.clauses[0].body);
        if (s.clauses.size() > 1) text += " Else " + simple(s.clauses[1].body);
        return line(text);
      }
      case Kind::select:
        return select(s);
      case Kind::for_:
        line("For " + variable_name(s.number) + " = " + shown(s.parts[0]) + " To " + shown(s.parts[1]) +
             (s.parts.size() > 2 ? " Step " + shown(s.parts[2]) : ""));
        return close(s, "Next");
      case Kind::for_each:
        line("For Each " + variable_name(s.number) + " In " + shown(s.parts[0]));
        return close(s, "Next");
      case Kind::do_while:
        line("Do While " + shown(s.parts[0]));
        return close(s, "Loop");
      case Kind::do_until:
        line("Do Until " + shown(s.parts[0]));
        return close(s, "Loop");
      case Kind::loop_while:
        line("Do");
        return close(s, "Loop While " + shown(s.parts[0]));
      case Kind::while_:
        line("While " + shown(s.parts[0]));
        return close(s, "Wend");
      case Kind::with:
        line(s.flag ? "With 5" : "With thing");
        return close(s, "End With");
      default:
        line(simple(s));
    }
  }

  void close(Statement& s, const std::string& end) {
    block(s.body);
    s.end_line = line_;
    line(end);
  }

  void if_statement(Statement& s) {
    for (std::size_t i = 0; i < s.clauses.size(); ++i) {
      Clause& clause = s.clauses[i];
      clause.line = line_;
      const std::string word = i == 0 ? "If " : "ElseIf ";
      line(clause.tests.empty() ? "Else" : word + shown(clause.tests[0]) + " Then");
      block(clause.body);
    }
    line("End If");
  }

  void select(Statement& s) {
    line("Select Case " + shown(s.parts[0]));
    for (Clause& clause : s.clauses) {
      clause.line = line_;
      std::string labels;
      for (const Expression& test : clause.tests) labels += (labels.empty() ? " " : ", ") + shown(test);
      line("Case" + (labels.empty() ? " Else" : labels));
      block(clause.body);
    }
    line("End Select");
  }

  std::vector<Procedure>& procedures_;
  const Procedure* current_ = nullptr;
  std::string name_;
  std::string text_;
  std::size_t line_ = 1;
  std::size_t indent_ = 0;
};

RandomProgram::RandomProgram(std::uint64_t seed) : random_(seed) {
  do {
    generate();
    text_ = Writer(procedures_).write(main_);
    expected_.clear();
  } while (!run_model(procedures_, main_, expected_));
}

int RandomProgram::chosen(int below) {
  return static_cast<int>(random_() % static_cast<std::uint64_t>(below));
}

void RandomProgram::generate() {
  procedures_.assign(procedure_count, {});
  counters_ = echoes_ = 0;
  for (int i = 0; i < procedure_count; ++i) {
    procedures_[static_cast<std::size_t>(i)].is_method = i >= 3;
    procedures_[static_cast<std::size_t>(i)].is_function = i >= 3 || one_in(2);
  }
  for (procedure_ = procedure_count - 1; procedure_ >= 0; --procedure_) {
    in_for_ = in_do_ = in_with_ = false;
    procedures_[static_cast<std::size_t>(procedure_)].body = block(1, 4);
  }
  in_for_ = in_do_ = in_with_ = false;
  main_.clear();
  if (!one_in(8)) main_.push_back({Statement::Kind::resume_next});
  for (Statement& s : block(0, 8)) main_.push_back(std::move(s));
}

int RandomProgram::variable() {
  return chosen(procedure_ >= 0 ? parameter + 1 : own_variable);
}

Expression RandomProgram::failure() {
  return {Expression::Kind::failure, chosen(static_cast<int>(failings.size()))};
}

// A procedure that comes later, so that nothing calls itself; -1 where there is none.
int RandomProgram::callee(bool function, bool method) {
  for (int i = procedure_ + 1 + chosen(2); i < procedure_count; ++i) {
    const Procedure& found = procedures_[static_cast<std::size_t>(i)];
    if (found.is_function == function && found.is_method == method) return i;
  }
  return -1;
}

Expression RandomProgram::value(int depth) {
  using Kind = Expression::Kind;
  if (one_in(7)) return failure();
  const int kind = chosen(depth > 1 ? 4 : 9);
  if (kind < 2) return number(chosen(4));
  if (kind == 2) return of_variable(variable());
  if (kind == 3) return one_in(3) ? Expression{Kind::text, chosen(3)} : number(chosen(4));
  if (kind < 6) {
    const int called = callee(true, in_with_);
    if (called < 0) return of_variable(variable());
    Expression argument = one_in(2) ? of_variable(variable()) : value(depth + 1);
    return {in_with_ ? Kind::method : Kind::function, called, {std::move(argument)}};
  }
  Expression left = value(depth + 1);
  Expression right = value(depth + 1);
  // Whether a variable is read before or after a call that changes it is no matter of this model.
  if (calls(right) && left.kind == Kind::variable) left = number(1);
  return {kind == 6 ? Kind::quotient : Kind::sum, 0, {std::move(left), std::move(right)}};
}

Expression RandomProgram::condition(int depth) {
  if (one_in(5)) return failure();
  Expression left = value(depth + 1);
  Expression right = value(depth + 1);
  if (calls(right) && left.kind == Expression::Kind::variable) left = number(2);
  if (left.kind == Expression::Kind::text) left = number(0);
  if (right.kind == Expression::Kind::text) right = of_variable(variable());
  return {
      one_in(2) ? Expression::Kind::less : Expression::Kind::equal, 0, {std::move(left), std::move(right)}};
}

Statements RandomProgram::block(int depth, std::size_t most) {
  Statements statements;
  const auto count = static_cast<std::size_t>(chosen(static_cast<int>(most) + 1));
  while (statements.size() < count) add_statement(statements, depth);
  return statements;
}

void RandomProgram::add_statement(Statements& statements, int depth) {
  using Kind = Statement::Kind;
  const auto add = [&](Kind kind, int n, std::vector<Expression> parts = {}) {
    Statement s{kind, n};
    s.parts = std::move(parts);
    statements.push_back(std::move(s));
  };
  const auto echo = [&] {
    if (one_in(2)) return add(Kind::echo, echoes_++);
    add(Kind::echo, echoes_++, {value(1)});
  };
  const int kind = chosen(depth >= deepest ? 15 : 26);
  if (kind < 4) return echo();
  if (kind < 7) return add(Kind::assign, variable(), {value(1)});
  switch (kind) {
    case 7:
      return add(Kind::echo_error, 0);
    case 8:
      return add(Kind::raise, 1000 + chosen(3));
    case 9:
      return one_in(3) ? add(Kind::no_resume, 0) : add(Kind::resume_next, 0);
    case 10:
      return add(Kind::clear, 0);
    case 11: {
      const int called = callee(false, false);
      if (called < 0) return echo();
      add(Kind::call, called, {one_in(2) ? of_variable(variable()) : value(2)});
      statements.back().flag = true;
      return;
    }
    case 12:
      if (procedure_ >= 0 && procedures_[static_cast<std::size_t>(procedure_)].is_function) {
        return add(Kind::return_value, 0, {value(1)});
      }
      return echo();
    case 13:
      if (in_for_) return add(Kind::exit_for, 0);
      if (in_do_) return add(Kind::exit_do, 0);
      return echo();
    case 14:
      return procedure_ >= 0 && one_in(3) ? add(Kind::exit_procedure, 0) : echo();
    case 15:
    case 16:
    case 17:
      statements.push_back(if_statement(depth));
      return;
    case 18:
    case 19: {
      Statement s{Kind::one_line_if};
      s.clauses.push_back({{condition(1)}, 0, {}});
      if (one_in(2)) s.clauses.emplace_back();
      for (Clause& clause : s.clauses) {
        do add_statement(clause.body, deepest);
        while (one_in(3));
      }
      statements.push_back(std::move(s));
      return;
    }
    case 20:
    case 21:
      statements.push_back(select_statement(depth));
      return;
    case 22: {
      Statement s{Kind::with};
      s.flag = one_in(4);
      const bool outer = std::exchange(in_with_, true);
      s.body = block(depth + 1, 3);
      in_with_ = outer;
      statements.push_back(std::move(s));
      return;
    }
    default:
      return add_loop(statements, depth);
  }
}

Statement RandomProgram::if_statement(int depth) {
  Statement s{Statement::Kind::if_};
  const int tests = 1 + chosen(3);
  for (int i = 0; i < tests; ++i) s.clauses.push_back({{condition(1)}, 0, block(depth + 1, 3)});
  if (one_in(2)) s.clauses.push_back({{}, 0, block(depth + 1, 3)});
  return s;
}

Statement RandomProgram::select_statement(int depth) {
  Statement s{Statement::Kind::select};
  s.parts.push_back(value(1));
  const int cases = 1 + chosen(3);
  for (int i = 0; i < cases; ++i) {
    Clause clause;
    do clause.tests.push_back(value(2));
    while (one_in(3));
    clause.body = block(depth + 1, 3);
    s.clauses.push_back(std::move(clause));
  }
  if (one_in(2)) s.clauses.push_back({{}, 0, block(depth + 1, 3)});
  return s;
}

void RandomProgram::add_loop(Statements& statements, int depth) {
  using Kind = Statement::Kind;
  const int counter = first_counter + counters_++;
  const auto body = [&](bool is_for, bool is_do) {
    const bool outer_for = std::exchange(in_for_, is_for || (in_for_ && !is_do));
    const bool outer_do = std::exchange(in_do_, is_do || in_do_);
    Statements made = block(depth + 1, 3);
    in_for_ = outer_for;
    in_do_ = outer_do;
    return made;
  };
  const auto number_or_failure = [&](int n) { return one_in(5) ? failure() : number(n); };
  Statement loop{Kind::for_, counter};
  switch (chosen(4)) {
    case 0:
      loop.parts = {number_or_failure(1), one_in(4) ? value(2) : number_or_failure(chosen(4))};
      if (one_in(3)) loop.parts.push_back(number_or_failure(1 + chosen(2)));
      loop.body = body(true, false);
      break;
    case 1:
      loop.kind = Kind::for_each;
      if (one_in(5)) {
        loop.parts = {one_in(2) ? number(5) : failure()};
      } else {
        loop.parts = {{Expression::Kind::array, 0, {number(1), number_or_failure(2)}}};
      }
      loop.body = body(true, false);
      break;
    case 2: {
      // Ends after some rounds, whatever fails.
      constexpr Kind kinds[] = {Kind::do_while, Kind::do_until, Kind::loop_while};
      loop.kind = kinds[chosen(3)];
      loop.parts = {condition(1)};
      Statement leave{Kind::one_line_if};
      leave.clauses.push_back(
          {{{Expression::Kind::less, 0, {number(2), of_variable(counter)}}}, 0, {Statement{Kind::exit_do}}});
      Statement count{Kind::assign, counter};
      count.parts = {{Expression::Kind::sum, 0, {of_variable(counter), number(1)}}};
      loop.body = {count, leave};
      for (Statement& s : body(false, true)) loop.body.push_back(std::move(s));
      break;
    }
    default: {
      // Its condition fails in the second round and ends it after the fourth one.
      loop.kind = Kind::while_;
      const Expression divisor{Expression::Kind::sum, 0, {number(8), of_variable(counter)}};
      const Expression rounds{Expression::Kind::quotient, 0, {number(8), divisor}};
      loop.parts = {{Expression::Kind::less, 0, {of_variable(counter), rounds}}};
      Statement count{Kind::assign, counter};
      count.parts = {{Expression::Kind::sum, 0, {of_variable(counter), number(1)}}};
      loop.body = {count};
      for (Statement& s : body(false, false)) loop.body.push_back(std::move(s));
    }
  }
  Statement reset{Kind::assign, counter};
  reset.parts = {number(0)};
  statements.push_back(std::move(reset));
  statements.push_back(std::move(loop));
}

}  // namespace zrl::vbs::test
