#include "core/chart.h"

#include <algorithm>
#include <utility>

#include "core/form.h"
#include "core/text/error.h"

namespace zrl {

namespace {

bool are_equal(const StringList& left, const StringList& right) {
  if (left.size() != right.size()) return false;
  for (std::size_t i = 0; i < left.size(); ++i) {
    if (left[i] != right[i]) return false;
  }
  return true;
}

}  // namespace

Chart::Chart(Form& form, std::string_view name, std::string_view caption, std::string_view tool_tip,
             const Style& style, std::initializer_list<Series> series)
    : CaptionedControl(form, ControlKind::chart, name, caption, tool_tip),
      style_(style),
      series_(series),
      values_(series.size()) {
  for (const Series& one : series_) captions_.emplace_back(one.caption);
}

void Chart::set(StringList labels, std::vector<std::vector<std::int64_t>> values) {
  const bool fits = values.size() == series_.size() &&
                    std::ranges::all_of(values, [&](const auto& one) { return one.size() == labels.size(); });
  if (!fits) throw Error(error_number::invalid_property_value, "Invalid property value: " + name());
  if (values == values_ && are_equal(labels, labels_)) return;
  labels_ = std::move(labels);
  values_ = std::move(values);
  clicked_ = -1;
  changed(Property::series);
}

void Chart::user_choose(std::int64_t index) {
  require_usable();
  if (index < 0 || static_cast<std::size_t>(index) >= labels_.size()) {
    refuse("has no mark " + std::to_string(index));
  }
  clicked_ = index;
  form().run(on_click);
}

}  // namespace zrl
