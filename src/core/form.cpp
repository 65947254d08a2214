#include "core/form.h"

#include "core/chart.h"
#include "core/console.h"
#include "core/table.h"
#include "core/text/error.h"

namespace zrl {

namespace {

void put_into(Frame* container, const LayoutNode& node) {
  if (node.control != nullptr) node.control->set_container(container);
  Frame* inner = node.kind == LayoutNode::Kind::frame ? static_cast<Frame*>(node.control) : container;
  for (const LayoutNode& child : node.children) put_into(inner, child);
}

}  // namespace

LayoutNode column(std::initializer_list<LayoutNode> nodes) {
  return {LayoutNode::Kind::column, nullptr, nodes};
}

LayoutNode row(std::initializer_list<LayoutNode> nodes) {
  return {LayoutNode::Kind::row, nullptr, nodes};
}

LayoutNode grid(std::initializer_list<LayoutNode> nodes) {
  return {LayoutNode::Kind::grid, nullptr, nodes};
}

LayoutNode frame(Frame& title, LayoutNode content) {
  return {LayoutNode::Kind::frame, &title, {std::move(content)}};
}

LayoutNode grow(LayoutNode node) {
  node.grows = true;
  return node;
}

LayoutNode fold(LayoutNode node) {
  node.folds = true;
  return node;
}

Form::Form(Console& console, std::string_view name, std::string_view caption)
    : console_(console), name_(name), caption_(caption) {}

void Form::set_caption(std::string_view caption) {
  if (caption_ == caption) return;
  caption_ = caption;
  next_revision();
}

void Form::set_query(std::string_view query) {
  if (query_ == query) return;
  query_ = query;
  next_revision();
}

Control& Form::control_at(std::size_t index) const {
  if (index >= controls_.size()) throw Error(error_number::subscript_out_of_range, "Subscript out of range");
  return *controls_[index];
}

Control* Form::find(std::string_view name) const {
  for (Control* control : controls_) {
    if (control->name() == name) return control;
  }
  return nullptr;
}

void Form::run(const Event& event) {
  if (!event) return;
  console_.begin_action();
  try {
    event();
  } catch (...) {
    console_.record_escaped(name_);
  }
  console_.end_action();
}

std::string Form::label_of(const Control& control) const {
  if (control.has(Property::caption))
    return std::string(std::get<std::string_view>(control.get(Property::caption)));
  for (const Control* other : controls_) {
    if (other->kind() != ControlKind::label) continue;
    const auto* label = static_cast<const Label*>(other);
    if (label->names() == &control && !label->caption().empty()) return label->caption();
  }
  const Frame* frame = control.container();
  return frame != nullptr && !frame->caption().empty() ? frame->caption() : control.name();
}

void Form::run_using(const std::function<bool()>& act) {
  for (const Control* control : controls_) control->used_ = false;
  if (!act()) return;
  for (Control* control : controls_) {
    if (control->used_) control->put_unsaved(false);
  }
}

std::vector<const Control*> Form::unsaved() const {
  std::vector<const Control*> found;
  for (const Control* control : controls_) {
    if (control->unsaved()) found.push_back(control);
  }
  return found;
}

void Form::set_layout(LayoutNode layout) {
  layout_ = std::move(layout);
  put_into(nullptr, *layout_);
  // What names a control lies where that control lies.
  for (Control* control : controls_) {
    if (control->kind() != ControlKind::label) continue;
    const Control* named = static_cast<Label&>(*control).names();
    if (named != nullptr) control->set_container(named->container());
  }
}

// Runs one index past the last control, whose reads fail like those of a control without the
// property; and drops the translator after every control. Both are how it has always been done.
void Form::translate_controls() {
  const auto translate_property = [this](std::size_t index, Property property) {
    try {
      Control& control = control_at(index);
      const auto text = std::get<std::string_view>(control.get(property));
      if (!text.empty()) control.set(property, translate(text));
    } catch (const Error&) {  // NOLINT(bugprone-empty-catch)
    }
  };
  for (Control* control : controls()) {
    if (control->kind() != ControlKind::table) continue;
    auto& table = static_cast<Table&>(*control);
    for (std::size_t i = 0; i < table.columns_.size(); ++i) {
      table.captions_[i] = translate(table.columns_[i].caption);
    }
  }
  for (Control* control : controls()) {
    if (control->kind() != ControlKind::chart) continue;
    auto& chart = static_cast<Chart&>(*control);
    for (std::size_t i = 0; i < chart.series_.size(); ++i) {
      chart.captions_[i] = translate(chart.series_[i].caption);
    }
  }
  for (std::size_t i = 0; i <= controls().size(); ++i) {
    translate_property(i, Property::caption);
    translate_property(i, Property::tool_tip);
    console().localisation().release_translator();
  }
}

std::string Form::translate(std::string_view text) {
  return console_.localisation().translate(text);
}

}  // namespace zrl
