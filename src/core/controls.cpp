#include "core/controls.h"

#include <algorithm>
#include <array>

#include "core/console.h"
#include "core/form.h"
#include "core/text/error.h"

namespace zrl {

namespace {

[[noreturn]] void invalid_value(const Control& control) {
  throw Error(error_number::invalid_property_value, "Invalid property value: " + control.name());
}

}  // namespace

CaptionedControl::CaptionedControl(Form& form, ControlKind kind, std::string_view name,
                                   std::string_view caption, std::string_view tool_tip)
    : Control(form, kind, name) {
  caption_ = caption;
  set_tool_tip(tool_tip);
}

void Label::set_tone(Tone tone) {
  if (tone_ == tone) return;
  tone_ = tone;
  changed(Property::tone);
}

std::string_view name_of(Label::Tone tone) {
  static constexpr std::string_view names[] = {"plain", "good", "waiting", "bad"};
  return names[static_cast<std::size_t>(tone)];
}

TextField::TextField(Form& form, std::string_view name, std::string_view tool_tip, const Style& style)
    : Control(form, ControlKind::text_field, name), style_(style) {
  set_tool_tip(tool_tip);
}

void TextField::set_text(std::string_view text) {
  if (text_ == text) return;
  text_ = text;
  if (!typing_) replaced();
  changed(Property::text);
  form().run(on_change);
}

void TextField::set_marks(std::vector<Mark> marks) {
  if (marks_ == marks) return;
  marks_ = std::move(marks);
  changed(Property::marks);
}

// A handler that gives what is typed another form replaces nothing.
void TextField::user_type(std::string_view text) {
  require_usable();
  const std::string before = text_;
  typing_ = true;
  set_text(text);
  typing_ = false;
  if (!chooses_rows_) typed(before, text_);
}

PropertyValue TextField::own(Property) const {
  return std::string_view(text_);
}

void CheckBox::set_checked(bool checked) {
  if (checked_ == checked) return;
  checked_ = checked;
  changed(Property::value);
}

void CheckBox::set_value(std::int16_t value) {
  if (value != 0 && value != 1) invalid_value(*this);
  set_checked(value == 1);
}

void CheckBox::user_click() {
  require_usable();
  set_checked(!checked_);
  form().run(on_click);
}

PropertyValue CheckBox::own(Property) const {
  return std::int64_t{value()};
}

void OptionButton::choose() {
  if (chosen_) return;
  for (Control* other : form().controls()) {
    if (other->kind() != ControlKind::option_button || other->container() != container()) continue;
    auto& choice = static_cast<OptionButton&>(*other);
    if (!choice.chosen_) continue;
    choice.chosen_ = false;
    choice.changed(Property::value);
  }
  chosen_ = true;
  changed(Property::value);
}

void OptionButton::user_click() {
  require_usable();
  choose();
  form().run(on_click);
}

PropertyValue OptionButton::own(Property) const {
  return std::int64_t{chosen_ ? 1 : 0};
}

void Button::set_destroys(const Loss& loss, LossCount count) {
  loss_ = &loss;
  count_ = std::move(count);
}

void Button::set_destroys(const Loss& loss, const ItemsControl& items) {
  set_destroys(loss, [&items] { return items.items().size(); });
}

std::optional<std::uint64_t> Button::count_loss() {
  std::optional<std::uint64_t> count;
  if (count_) form().run([&] { count = count_(); });
  return count;
}

void Button::user_click() {
  require_usable();
  form().run(on_click);
}

void Link::set_target(std::string_view page, std::string_view query) {
  if (page_ != page) {
    page_ = page;
    changed(Property::page);
  }
  if (query_ != query) {
    query_ = query;
    changed(Property::query);
  }
}

void Link::user_click() {
  require_usable();
  if (page_.empty()) refuse("leads nowhere");
  form().run([this] { form().console().host().open_page(page_, query_); });
}

PropertyValue Link::own(Property property) const {
  return std::string_view(property == Property::page ? page_ : query_);
}

std::string_view name_of(EntryKind kind) {
  static constexpr std::array<std::string_view, 6> names = {"other",  "address", "network",
                                                            "domain", "mail",    "word"};
  return names[static_cast<std::size_t>(kind)];
}

ItemsControl::ItemsControl(Form& form, ControlKind kind, std::string_view name, std::string_view tool_tip)
    : Control(form, kind, name) {
  set_tool_tip(tool_tip);
}

std::string_view ItemsControl::chosen() const {
  return index_ < 0 ? std::string_view() : items_[static_cast<std::size_t>(index_)];
}

PropertyValue ItemsControl::own(Property property) const {
  if (property == Property::index) return index_;
  return &items_;
}

void ItemsControl::put_items(StringList items) {
  const bool both_empty = items_.empty() && items.empty();
  items_ = form().console().shared(std::move(items));
  if (!both_empty) changed(Property::items);
  put_index(-1);
}

void ItemsControl::put_index(std::int64_t index) {
  if (index_ == index) return;
  index_ = index;
  changed(Property::index);
}

void ItemsControl::append(std::string_view item) {
  items_.push_back(item);
  changed(Property::items);
}

void ItemsControl::require_item(std::int64_t index) const {
  require_usable();
  if (index < 0 || static_cast<std::size_t>(index) >= items_.size()) {
    refuse("has no item " + std::to_string(index));
  }
}

void ListBox::set_acts(const Acts& acts) {
  acts_ = acts;
  for (Button* button : {acts.add, acts.remove}) {
    if (button != nullptr && acts.entry != nullptr) button->set_needs({acts.entry});
  }
}

void ListBox::set_items(StringList items) {
  put_items(std::move(items));
  set_stale(false);
}

void ListBox::set_stale(bool stale) {
  if (stale_ == stale) return;
  stale_ = stale;
  changed(Property::stale);
}

void ListBox::user_reload() {
  require_usable();
  form().run(on_reload);
}

void ListBox::set_index(std::int64_t index) {
  if (index < -1 || index >= static_cast<std::int64_t>(items().size())) invalid_value(*this);
  put_index(index);
}

void ListBox::click_item(std::int64_t index) {
  set_index(index);
  form().run(on_click);
}

void ListBox::user_choose(std::int64_t index) {
  require_item(index);
  put_index(index);
  form().run(on_click);
}

ComboBox::ComboBox(Form& form, std::string_view name, std::string_view tool_tip, const Style& style)
    : ItemsControl(form, ControlKind::combo_box, name, tool_tip), style_(style) {}

void ComboBox::set_text(std::string_view text) {
  if (text_ != text) replaced();
  put_text(text);
  choose_text();
}

void ComboBox::choose_text() {
  const std::size_t found = items().find(text_);
  put_index(found == items().size() ? -1 : static_cast<std::int64_t>(found));
}

void ComboBox::user_type(std::string_view text) {
  require_usable();
  if (!style_.editable) {
    const std::size_t found = items().find(text);
    if (found == items().size()) refuse("has no item with this text");
    user_choose(static_cast<std::int64_t>(found));
    return;
  }
  if (text == text_) return;
  const std::string before = text_;
  put_text(text);
  choose_text();
  typed(before, text_);
  form().run(on_change);
}

void ComboBox::user_choose(std::int64_t index) {
  require_item(index);
  put_index(index);
  put_text(std::string(chosen()));
  replaced();
  form().run(on_click);
}

PropertyValue ComboBox::own(Property property) const {
  if (property == Property::text) return std::string_view(text_);
  return ItemsControl::own(property);
}

void ComboBox::put_text(std::string_view text) {
  if (text_ == text) return;
  text_ = text;
  changed(Property::text);
}

Timer::Timer(Form& form, std::string_view name, std::int64_t interval_ms, bool enabled)
    : Control(form, ControlKind::timer, name), interval_(interval_ms) {
  set_enabled(enabled);
}

void Timer::set_interval(std::int64_t interval_ms) {
  if (interval_ms < 0 || interval_ms > 65535) invalid_value(*this);
  if (interval_ == interval_ms) return;
  interval_ = interval_ms;
  changed(Property::interval);
}

void Timer::user_tick() {
  require_usable();
  form().run(on_tick);
}

PropertyValue Timer::own(Property) const {
  return interval_;
}

ScrollBar::ScrollBar(Form& form, std::string_view name, std::string_view tool_tip)
    : Control(form, ControlKind::scroll_bar, name) {
  set_tool_tip(tool_tip);
}

void ScrollBar::set_value(std::int64_t value) {
  if (value < min_ || value > max_) invalid_value(*this);
  if (value_ == value) return;
  value_ = value;
  changed(Property::value);
}

void ScrollBar::set_range(std::int64_t min, std::int64_t max) {
  if (max < min) invalid_value(*this);
  if (min_ != min) {
    min_ = min;
    changed(Property::min);
  }
  if (max_ != max) {
    max_ = max;
    changed(Property::max);
  }
  set_value(std::clamp(value_, min_, max_));
}

void ScrollBar::user_scroll(std::int64_t value) {
  require_usable();
  if (value < min_ || value > max_) refuse("has no position " + std::to_string(value));
  if (value == value_) return;
  set_value(value);
  form().run(on_change);
}

PropertyValue ScrollBar::own(Property property) const {
  if (property == Property::min) return min_;
  if (property == Property::max) return max_;
  return value_;
}

}  // namespace zrl
