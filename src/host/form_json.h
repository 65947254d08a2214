#pragma once

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/value.hpp>

#include "core/controls.h"
#include "core/form.h"

namespace zrl {

// Texts are made well-formed UTF-8; items become an array of texts.
boost::json::value to_json(const PropertyValue& value);

// What is marked in a source text, one object a mark.
boost::json::array marks_json(const TextField& field);

// One object a control, by name: `kind` and the properties of that kind; a source text that has marks
// has `marks` too.
boost::json::object controls_json(const Form& form);

}  // namespace zrl
