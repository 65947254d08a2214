#pragma once

#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

// Programs at random, about errors and where scripts go on after them. A program is a tree, from which both
// its text and, by a model of the language, its output come.
namespace zrl::vbs::test {

struct Expression {
  enum class Kind : std::uint8_t {
    number,
    text,
    variable,  // number: which one
    sum,       // (a + b) Mod 9
    quotient,  // a \ b
    less,
    equal,
    array,     // Array(...), for For Each
    function,  // number: which procedure
    method,    // of an object; number: which procedure
    failure,   // number: which way of failing
  };
  Kind kind = Kind::number;
  int number = 0;
  std::vector<Expression> parts = {};
};

struct Statement;
using Statements = std::vector<Statement>;

struct Clause {  // of If and Select Case
  std::vector<Expression> tests = {};
  std::size_t line = 0;
  Statements body;
};

struct Statement {
  enum class Kind : std::uint8_t {
    echo,
    echo_error,  // Err.Number
    assign,
    return_value,
    call,  // of a Sub
    if_,
    one_line_if,
    select,
    for_,
    for_each,
    do_while,
    do_until,
    loop_while,
    while_,
    with,
    exit_for,
    exit_do,
    exit_procedure,
    resume_next,
    no_resume,
    clear,
    raise,
  };
  Kind kind = Kind::echo;
  int number = 0;     // which variable, procedure, error; what is echoed
  bool flag = false;  // there is an Else; the object of With is no object
  std::size_t line = 0;
  std::size_t end_line = 0;
  std::vector<Expression> parts = {};
  std::vector<Clause> clauses = {};
  Statements body = {};
};

// A way of failing: what is written, and its error.
struct Failing {
  const char* text;
  int error;
};
extern const std::array<Failing, 9> failings;

struct Procedure {
  bool is_function = true;
  bool is_method = false;  // of the class
  Statements body = {};
};

// Variables: 0 to 3 are global, 4 is a procedure's own, 5 its parameter, by reference; 10 and above are
// counters, each of one loop.
inline constexpr int own_variable = 4;
inline constexpr int parameter = 5;
inline constexpr int first_counter = 10;

class RandomProgram {
 public:
  explicit RandomProgram(std::uint64_t seed);

  const std::string& text() const { return text_; }
  // What the program prints; an error that ends it is the last line: "error 11 in line 5".
  const std::vector<std::string>& expected() const { return expected_; }

 private:
  class Writer;

  // Making the tree.
  void generate();
  int chosen(int below);
  bool one_in(int n) { return chosen(n) == 0; }
  Expression value(int depth);
  Expression condition(int depth);
  Expression failure();
  int variable();
  Statements block(int depth, std::size_t most);
  void add_statement(Statements& statements, int depth);
  void add_loop(Statements& statements, int depth);
  Statement if_statement(int depth);
  Statement select_statement(int depth);
  int callee(bool function, bool method);

  std::mt19937_64 random_;
  std::vector<Procedure> procedures_;
  Statements main_;
  int counters_ = 0;
  int echoes_ = 0;
  // While a body is made.
  int procedure_ = -1;
  bool in_for_ = false;
  bool in_do_ = false;
  bool in_with_ = false;

  std::string text_;
  std::vector<std::string> expected_;
};

// An error as expected() tells it, from what the engine tells of it.
std::string shortened(const std::string& line);

// Runs the tree. False where it takes too long.
bool run_model(const std::vector<Procedure>& procedures, const Statements& main,
               std::vector<std::string>& output);

}  // namespace zrl::vbs::test
