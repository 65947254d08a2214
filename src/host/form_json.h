#pragma once

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/value.hpp>

#include "core/controls.h"
#include "core/form.h"

namespace zrl {

// A property as JSON (RFC 8259): texts are made well-formed UTF-8, items become an array of texts.
boost::json::value to_json(const PropertyValue& value);

// The marks in a source text (faults of a script), one object a mark.
boost::json::array marks_json(const TextField& field);

// One object for each control, by its name: `kind` and the properties of that kind, and `marks` for a source
// text that has some. Copies all items of all lists.
boost::json::object controls_json(const Form& form);

}  // namespace zrl
