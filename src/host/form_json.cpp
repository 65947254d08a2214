#include "host/form_json.h"

#include "core/text/utf8.h"

namespace zrl {

namespace {

boost::json::string text_json(std::string_view text) {
  return is_valid_utf8(text) ? boost::json::string(text) : boost::json::string(valid_utf8(text));
}

}  // namespace

boost::json::value to_json(const PropertyValue& value) {
  if (const auto* flag = std::get_if<bool>(&value)) return *flag;
  if (const auto* number = std::get_if<std::int64_t>(&value)) return *number;
  if (const auto* text = std::get_if<std::string_view>(&value)) return text_json(*text);
  const StringList& items = *std::get<const StringList*>(value);
  boost::json::array array;
  array.reserve(items.size());
  for (std::size_t i = 0; i < items.size(); ++i) array.emplace_back(text_json(items[i]));
  return array;
}

boost::json::array marks_json(const TextField& field) {
  boost::json::array marks;
  for (const TextField::Mark& mark : field.marks()) {
    marks.push_back({{"name", text_json(mark.name)},
                     {"line", mark.line},
                     {"column", mark.column},
                     {"text", text_json(mark.text)},
                     {"elsewhere", mark.elsewhere}});
  }
  return marks;
}

boost::json::object controls_json(const Form& form) {
  boost::json::object controls;
  for (const Control* control : form.controls()) {
    boost::json::object properties;
    properties["kind"] = name_of(control->kind());
    for (const Property property : properties_of(control->kind())) {
      properties[name_of(property)] = to_json(control->get(property));
    }
    if (control->kind() == ControlKind::text_field) {
      const auto& field = static_cast<const TextField&>(*control);
      if (!field.marks().empty()) properties["marks"] = marks_json(field);
    }
    controls[control->name()] = std::move(properties);
  }
  return controls;
}

}  // namespace zrl
