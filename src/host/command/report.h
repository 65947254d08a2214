#pragma once

#include <boost/json/object.hpp>
#include <iosfwd>

#include "core/console.h"
#include "core/form.h"
#include "host/command/step_runner.h"

namespace zrl::command {

// The output of `do`: the page, the dialogs that were open after the last step, and what happened. The
// dialogs are copied when the last step has run; everything else is read when the report is printed.
class Report {
 public:
  explicit Report(Console& console) : console_(console) {}

  // With these windows of their tables.
  void take_dialogs(const RowWindows& windows);

  boost::json::object json(const Form& page, const StepRunner& runner) const;
  // For people on a terminal; all texts are made printable.
  void print(std::ostream& out, const Form& page, const StepRunner& runner) const;

 private:
  Console& console_;
  boost::json::object forms_;
};

}  // namespace zrl::command
