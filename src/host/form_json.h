#pragma once

#include <boost/json/object.hpp>
#include <boost/json/value.hpp>

#include "core/control.h"
#include "core/form.h"

namespace zrl {

// Texts are made well-formed UTF-8; items become an array of texts.
boost::json::value to_json(const PropertyValue& value);

// One object a control, by name: `kind` and the properties of that kind.
boost::json::object controls_json(const Form& form);

}  // namespace zrl
