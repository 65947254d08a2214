#pragma once

#include <stdexcept>
#include <string>

namespace zrl {

// The exception that components and controls raise when an operation fails. (A user's act that is not
// possible raises Refused instead.) Steps catch it and record it, so pages rarely see one. Both members are
// shown to people: the connection message box shows "number: description".
//
// The number is one of error_number below, or that of the layer that failed: errno for files and sockets, the
// result code of the database engine, the code of an SMTP reply, or 0 if there is none. So numbers of
// different layers may coincide. The description is UTF-8 and may quote strangers; hosts make it printable
// before they show it.
class Error : public std::runtime_error {
 public:
  Error(int number, const std::string& description) : std::runtime_error(description), number_(number) {}

  int number() const { return number_; }

 private:
  int number_;
};

// The numbers that the framework and its components raise themselves. They and their meanings are fixed,
// because users know them from message boxes and records.
namespace error_number {
inline constexpr int invalid_call = 5;
inline constexpr int subscript_out_of_range = 9;
inline constexpr int type_mismatch = 13;
inline constexpr int object_not_set = 91;
inline constexpr int invalid_property_value = 380;
inline constexpr int cannot_create_object = 429;
inline constexpr int property_not_supported = 438;
inline constexpr int malformed_statement = 3075;
}  // namespace error_number

}  // namespace zrl
