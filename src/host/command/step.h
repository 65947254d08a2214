#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace zrl::command {

// What a user tells the command line to do next, as it was written:
//
//   NAME            click
//   NAME=TEXT       put a text in, or choose it
//   NAME#I          choose the item at index I
//   NAME.tick       a timer's tick
//   FORM.close      close a dialog
//   answer=ok       how message boxes are answered from now on (or answer=cancel)
//
// NAME may be led by the name of a form: "transfer.source=/tmp/x.txt".
struct Step {
  enum class Kind { click, text, item, tick, close, answer };

  Kind kind = Kind::click;
  std::string written;
  std::string target;  // [FORM.]NAME, or FORM for `close`
  std::string text;
  std::int64_t index = 0;
};

// A step that is not written as it must be.
class BadStep : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Raises BadStep.
Step parse_step(std::string_view written);

}  // namespace zrl::command
