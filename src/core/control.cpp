#include "core/control.h"

#include "core/controls.h"
#include "core/form.h"
#include "core/text/error.h"

namespace zrl {

namespace {

using enum Property;

constexpr std::array<std::string_view, 16> kind_names = {
    "Frame", "Label",     "TextField", "CheckBox",   "OptionButton", "Button", "ListBox", "ComboBox",
    "Timer", "ScrollBar", "DriveList", "FolderList", "FileList",     "Table",  "Link",    "Chart"};

constexpr std::array<std::string_view, property_count> property_names = {
    "caption", "toolTip", "text",    "value",   "items", "index", "interval", "min",
    "max",     "enabled", "visible", "page",    "query", "marks", "tone",     "rows",
    "sort",    "filter",  "chosen",  "unsaved", "stale", "series"};

constexpr std::array captioned = {caption, tool_tip, enabled, visible};
constexpr std::array text_field = {text, tool_tip, enabled, visible};
constexpr std::array switches = {caption, value, tool_tip, enabled, visible};
constexpr std::array list_box = {items, index, tool_tip, enabled, visible};
constexpr std::array list_with_text = {text, items, index, tool_tip, enabled, visible};
constexpr std::array timer = {interval, enabled};
constexpr std::array scroll_bar = {value, min, max, tool_tip, enabled, visible};
constexpr std::array link = {caption, page, query, tool_tip, enabled, visible};

}  // namespace

std::string_view name_of(ControlKind kind) {
  return kind_names[static_cast<std::size_t>(kind)];
}

std::string_view name_of(Property property) {
  return property_names[static_cast<std::size_t>(property)];
}

std::span<const Property> properties_of(ControlKind kind) {
  switch (kind) {
    case ControlKind::frame:
    case ControlKind::label:
    case ControlKind::button:
    case ControlKind::table:
    case ControlKind::chart:
      return captioned;
    case ControlKind::text_field:
      return text_field;
    case ControlKind::check_box:
    case ControlKind::option_button:
      return switches;
    case ControlKind::list_box:
      return list_box;
    case ControlKind::combo_box:
    case ControlKind::drive_list:
    case ControlKind::folder_list:
    case ControlKind::file_list:
      return list_with_text;
    case ControlKind::timer:
      return timer;
    case ControlKind::scroll_bar:
      return scroll_bar;
    case ControlKind::link:
      return link;
  }
  return {};
}

Control::Control(Form& form, ControlKind kind, std::string_view name)
    : form_(form), name_(name), kind_(kind) {
  form.add(*this);
}

bool Control::has(Property property) const {
  for (const Property own_property : properties_of(kind_)) {
    if (own_property == property) return true;
  }
  return false;
}

PropertyValue Control::get(Property property) const {
  if (!has(property)) {
    throw Error(error_number::property_not_supported, "Object doesn't support this property or method: " +
                                                          name_ + "." + std::string(name_of(property)));
  }
  switch (property) {
    case Property::caption:
      return std::string_view(caption_);
    case Property::tool_tip:
      return std::string_view(tool_tip_);
    case Property::enabled:
      return enabled_;
    case Property::visible:
      return visible_;
    default:
      return own(property);
  }
}

void Control::set(Property property, std::string_view text) {
  (void)get(property);
  std::string& held = property == Property::caption ? caption_ : tool_tip_;
  if (held == text) return;
  held = text;
  changed(property);
}

void Control::set_tool_tip(std::string_view text) {
  set(Property::tool_tip, text);
}

void Control::set_enabled(bool enabled) {
  if (enabled_ == enabled) return;
  enabled_ = enabled;
  changed(Property::enabled);
}

void Control::set_visible(bool visible) {
  if (visible_ == visible) return;
  visible_ = visible;
  changed(Property::visible);
}

bool Control::usable() const {
  if (!enabled_ || !visible_) return false;
  return container_ == nullptr || container_->usable();
}

void Control::user_click() {
  refuse("cannot be clicked");
}
void Control::user_type(std::string_view) {
  refuse("takes no text");
}
void Control::user_choose(std::int64_t) {
  refuse("has no items");
}
void Control::user_scroll(std::int64_t) {
  refuse("has no positions");
}
void Control::user_tick() {
  refuse("is no timer");
}

void Control::typed(std::string_view before, std::string_view text) {
  if (!unsaved_) before_typing_ = before;
  put_unsaved(!text.empty() && text != before_typing_);
}

void Control::replaced() {
  if (unsaved_) put_unsaved(false, true);
}

void Control::put_unsaved(bool unsaved, bool set_aside) {
  if (unsaved_ == unsaved && set_aside_ == set_aside) return;
  unsaved_ = unsaved;
  set_aside_ = set_aside;
  if (!unsaved) before_typing_.clear();
  changed(Property::unsaved);
}

void Control::changed(Property property) {
  newest_ = form_.next_revision();
  revisions_[static_cast<std::size_t>(property)] = newest_;
}

void Control::require_usable() const {
  if (usable()) return;
  bool hidden = !visible_;
  for (const Frame* around = container_; around != nullptr; around = around->container()) {
    hidden = hidden || !around->visible();
  }
  refuse(hidden ? "is hidden" : "is disabled");
}

void Control::refuse(std::string_view why) const {
  throw Refused(name_ + " " + std::string(why));
}

PropertyValue Control::own(Property) const {
  return false;
}

}  // namespace zrl
