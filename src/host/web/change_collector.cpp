#include "host/web/change_collector.h"

#include <array>
#include <boost/json/array.hpp>
#include <boost/json/value.hpp>

#include "core/console.h"
#include "core/text/text.h"
#include "host/form_json.h"

namespace zrl::web {

namespace {

namespace json = boost::json;

using LabelNames = std::map<const Control*, std::string_view>;

LabelNames label_names(const Form& form) {
  LabelNames names;
  for (const Control* control : form.controls()) {
    if (control->kind() != ControlKind::label) continue;
    const Control* named = static_cast<const Label*>(control)->names();
    if (named != nullptr) names.emplace(named, control->name());
  }
  return names;
}

bool has_words(const Control& control) {
  return control.kind() == ControlKind::combo_box && static_cast<const ComboBox&>(control).style().words;
}

json::value property_json(const Control& control, Property property) {
  const PropertyValue value = control.get(property);
  if (property == Property::text && has_words(control)) {
    const auto word = std::get<std::string_view>(value);
    return to_json(std::string_view(control.form().console().localisation().translate(word)));
  }
  const auto* items = std::get_if<const StringList*>(&value);
  if (items == nullptr) return to_json(value);
  return json::object{{"length", (*items)->size()}, {"revision", control.revision(property)}};
}

json::value rows_json(const Control& table) {
  return json::object{{"revision", table.revision(Property::rows)}};
}

json::array chosen_json(const Table& table) {
  json::array keys;
  for (std::size_t i = 0; i < table.chosen().size(); ++i) keys.push_back(to_json(table.chosen()[i]));
  return keys;
}

void add_table(const Table& table, json::object& object) {
  object["columns"] = columns_json(table);
  object["filters"] = table.filters();
  if (!table.empty_text().empty()) {
    Localisation& localisation = table.form().console().localisation();
    object["empty"] = to_json(std::string_view(localisation.translate(table.empty_text())));
  }
  if (table.filter_field() != nullptr) object["filterField"] = table.filter_field()->name();
  object["rows"] = rows_json(table);
  object["sort"] = table.sort();
  object["filter"] = to_json(std::string_view(table.filter()));
  object["chosen"] = chosen_json(table);
}

std::string_view tone_of(const Control& label) {
  return name_of(static_cast<const Label&>(label).tone());
}

const Expectation* expectation_of(const Control& control) {
  if (control.kind() != ControlKind::text_field) return nullptr;
  const Expectation& expected = static_cast<const TextField&>(control).expects();
  return expected.kind == Expectation::Kind::anything ? nullptr : &expected;
}

json::value hint_json(const InputHint& hint) {
  if (hint.text.empty()) return nullptr;
  return json::object{{"text", to_json(std::string_view(hint.text))}, {"unfinished", hint.unfinished}};
}

void add_acts(const ListBox& list, json::object& object) {
  const ListBox::Acts& acts = list.acts();
  if (acts.entry != nullptr) object["entry"] = acts.entry->name();
  if (acts.add != nullptr) object["add"] = acts.add->name();
  if (acts.remove != nullptr) object["remove"] = acts.remove->name();
  if (list.transfer() != nullptr) object["transfer"] = list.transfer()->name();
}

json::object exchange_json(const FileList::Exchange& exchange) {
  json::object object{{"path", exchange.path->name()}, {"run", exchange.run->name()}};
  if (exchange.exports != nullptr) object["exports"] = exchange.exports->name();
  if (exchange.imports != nullptr) object["imports"] = exchange.imports->name();
  if (exchange.result != nullptr) object["result"] = exchange.result->name();
  return object;
}

void add_button_design(const Button& button, json::object& object) {
  if (button.primary()) object["primary"] = true;
  if (button.destroys() != nullptr) object["destroys"] = true;
  if (button.needs().empty()) return;
  json::array names;
  for (const Control* needed : button.needs()) names.push_back(json::value(needed->name()));
  object["needs"] = std::move(names);
}

// What stays as it is as long as the form lives.
void add_design(const Control& control, const LabelNames& labels, json::object& object) {
  const auto add_placeholder = [&](std::string_view text) {
    if (!text.empty()) object["placeholder"] = to_json(text);
  };
  if (control.kind() == ControlKind::text_field) {
    const TextField::Style& style = static_cast<const TextField&>(control).style();
    object["multiLine"] = style.multi_line;
    object["fixedPitch"] = style.fixed_pitch;
    object["secret"] = style.secret;
    if (style.counts) object["counts"] = true;
    if (style.path) object["path"] = true;
    if (static_cast<const TextField&>(control).chooses_rows()) object["choosesRows"] = true;
    if (style.source) {
      object["source"] = true;
      object["marks"] = marks_json(static_cast<const TextField&>(control));
    }
    add_placeholder(style.placeholder);
  } else if (control.kind() == ControlKind::combo_box) {
    const ComboBox::Style& style = static_cast<const ComboBox&>(control).style();
    object["editable"] = style.editable;
    add_placeholder(style.placeholder);
  } else if (control.kind() == ControlKind::option_button) {
    object["group"] = control.container() == nullptr ? "" : control.container()->name();
  } else if (control.kind() == ControlKind::list_box) {
    const auto& list = static_cast<const ListBox&>(control);
    add_acts(list, object);
    if (list.stale()) object["stale"] = true;
    if (list.entries() != EntryKind::other) object["entries"] = name_of(list.entries());
  } else if (control.kind() == ControlKind::table) {
    add_table(static_cast<const Table&>(control), object);
  } else if (control.kind() == ControlKind::file_list) {
    const FileList::Exchange* exchange = static_cast<const FileList&>(control).exchange();
    if (exchange != nullptr) object["exchange"] = exchange_json(*exchange);
  } else if (control.kind() == ControlKind::button) {
    add_button_design(static_cast<const Button&>(control), object);
  } else if (control.kind() == ControlKind::label && control.revision(Property::tone) > 0) {
    object["tone"] = tone_of(control);
  }
  if (control.unsaved()) object["unsaved"] = true;
  if (control.set_aside()) object["setAside"] = true;
  if (!control.replaces().empty()) {
    json::array names;
    for (const Control* field : control.replaces()) names.push_back(json::value(field->name()));
    object["replaces"] = std::move(names);
  }
  if (control.kind() == ControlKind::chart) {
    const auto& chart = static_cast<const Chart&>(control);
    object["shape"] = chart.style().shape == Chart::Shape::bars ? "bars" : "lines";
    if (chart.style().stacked) object["stacked"] = true;
    if (chart.style().times) object["times"] = true;
    add_numbers(chart, ForWhom::people, object);
  }
  const auto label = labels.find(&control);
  if (label != labels.end()) object["label"] = label->second;
}

json::value layout_json(const LayoutNode& node) {
  static constexpr std::array<std::string_view, 4> names = {"control", "column", "row", "grid"};
  json::object object;
  if (node.kind == LayoutNode::Kind::control) {
    object["control"] = node.control->name();
  } else if (node.kind == LayoutNode::Kind::frame) {
    object["frame"] = node.control->name();
    if (!node.children.empty()) object["content"] = layout_json(node.children.front());
  } else {
    json::array children;
    for (const LayoutNode& child : node.children) children.push_back(layout_json(child));
    object[names[static_cast<std::size_t>(node.kind)]] = std::move(children);
  }
  if (node.grows) object["grow"] = true;
  if (node.folds) object["fold"] = true;
  return object;
}

// A form without a layout shows its controls in their order.
json::value layout_of(const Form& form) {
  if (form.layout() != nullptr) return layout_json(*form.layout());
  json::array controls;
  for (const Control* control : form.controls()) {
    const bool is_named_by_other =
        control->kind() == ControlKind::label && static_cast<const Label*>(control)->names() != nullptr;
    if (control->kind() == ControlKind::timer || is_named_by_other) continue;
    controls.push_back(json::object{{"control", control->name()}});
  }
  return json::object{{"column", std::move(controls)}};
}

}  // namespace

json::object ChangeCollector::whole() {
  json::object controls;
  const LabelNames labels = label_names(form_);
  for (const Control* control : form_.controls()) {
    json::object object;
    object["kind"] = name_of(control->kind());
    for (const Property property : properties_of(control->kind())) {
      object[name_of(property)] = property_json(*control, property);
    }
    add_design(*control, labels, object);
    if (expectation_of(*control) != nullptr) object["hint"] = hint_json(hints_[control] = hint_of(*control));
    controls[control->name()] = std::move(object);
  }
  told_all();
  return {{"caption", to_json(std::string_view(caption_))},
          {"query", to_json(std::string_view(query_))},
          {"layout", layout_of(form_)},
          {"controls", std::move(controls)}};
}

std::optional<json::object> ChangeCollector::changes() {
  if (form_.revision() == told_ && untold_.empty()) return {};
  json::object controls;
  for (const Control* control : form_.controls()) {
    if (control->revision() <= told_ && untold_.empty()) continue;
    json::object changed = changes_of(*control);
    if (!changed.empty()) controls[control->name()] = std::move(changed);
  }
  const bool other_caption = caption_ != form_.caption();
  const bool other_query = query_ != form_.query();
  told_all();
  if (controls.empty() && !other_caption && !other_query) return {};
  json::object message{{"controls", std::move(controls)}};
  if (other_caption) message["caption"] = to_json(std::string_view(caption_));
  if (other_query) message["query"] = to_json(std::string_view(query_));
  return message;
}

InputHint ChangeCollector::hint_of(const Control& control) const {
  const auto& field = static_cast<const TextField&>(control);
  return input_hint(form_.console(), field.expects(), field.text());
}

void ChangeCollector::typed(const Control& control, std::string_view text) {
  typed_.insert_or_assign(&control, std::string(text));
}

bool ChangeCollector::is_news(const Control& control, Property property) const {
  if (untold_.contains(&control)) return true;
  if (control.revision(property) <= told_) return false;
  if (property != Property::text) return true;
  const auto shown = typed_.find(&control);
  return shown == typed_.end() || std::get<std::string_view>(control.get(property)) != shown->second;
}

json::object ChangeCollector::changes_of(const Control& control) {
  json::object changed;
  for (const Property property : properties_of(control.kind())) {
    if (is_news(control, property)) changed[name_of(property)] = property_json(control, property);
  }
  if (control.revision(Property::marks) > told_) {
    changed[name_of(Property::marks)] = marks_json(static_cast<const TextField&>(control));
  }
  if (control.revision(Property::series) > told_) {
    add_numbers(static_cast<const Chart&>(control), ForWhom::people, changed);
  }
  if (control.revision(Property::tone) > told_) changed["tone"] = tone_of(control);
  if (control.kind() == ControlKind::table) add_table_changes(static_cast<const Table&>(control), changed);
  if (expectation_of(control) != nullptr && control.revision(Property::text) > told_) {
    InputHint hint = hint_of(control);
    if (hint != hints_[&control] || untold_.contains(&control))
      changed["hint"] = hint_json(hints_[&control] = std::move(hint));
  }
  if (control.revision(Property::unsaved) > told_) {
    changed["unsaved"] = control.unsaved();
    if (control.set_aside()) changed["setAside"] = true;
  }
  if (control.revision(Property::stale) > told_) {
    changed["stale"] = static_cast<const ListBox&>(control).stale();
  }
  return changed;
}

void ChangeCollector::add_table_changes(const Table& table, json::object& changed) const {
  const auto is_new = [&](Property property) {
    return untold_.contains(&table) || table.revision(property) > told_;
  };
  if (is_new(Property::rows)) changed["rows"] = rows_json(table);
  if (is_new(Property::sort)) changed["sort"] = table.sort();
  if (is_new(Property::filter)) changed["filter"] = to_json(std::string_view(table.filter()));
  if (is_new(Property::chosen)) changed["chosen"] = chosen_json(table);
}

void ChangeCollector::told_all() {
  told_ = form_.revision();
  caption_ = form_.caption();
  query_ = form_.query();
  typed_.clear();
  untold_.clear();
}

}  // namespace zrl::web
