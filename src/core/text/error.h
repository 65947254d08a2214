#pragma once

#include <stdexcept>
#include <string>

namespace zrl {

// The one exception type that components and controls raise. Both members reach people: the
// connection message box shows "number: description".
class Error : public std::runtime_error {
 public:
  Error(int number, const std::string& description) : std::runtime_error(description), number_(number) {}

  int number() const { return number_; }

 private:
  int number_;
};

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
