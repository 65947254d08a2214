#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "core/text/string_list.h"

namespace zrl {

class Form;
class Frame;

// The kinds that hosts draw; each is a class in controls.h, table.h or chart.h.
enum class ControlKind : std::uint8_t {
  frame,
  label,
  text_field,
  check_box,
  option_button,
  button,
  list_box,
  combo_box,
  timer,
  scroll_bar,
  drive_list,
  folder_list,
  file_list,
  table,
  link,
  chart,
};

// "Frame", "TextField" and so on, as hosts print it.
std::string_view name_of(ControlKind kind);

enum class Property : std::uint8_t {
  caption,
  tool_tip,
  text,
  value,
  items,
  index,
  interval,
  min,
  max,
  enabled,
  visible,
  page,
  query,
  marks,  // this and the next only for revisions: get() does not return them, see TextField::marks(),
  tone,   // Label::tone(),
  rows,   // Table
  sort,
  filter,
  chosen,
  unsaved,  // Control::unsaved(),
  stale,    // ListBox::stale()
  series,   // and Chart, with its labels
};
inline constexpr std::size_t property_count = 22;

// "caption", "toolTip" and so on, as hosts print it.
std::string_view name_of(Property property);

// The properties of a kind, in the order in which hosts print them.
std::span<const Property> properties_of(ControlKind kind);

// Views and the pointer refer to the control's own data: they are valid until the property is next changed.
// The pointer is never null.
using PropertyValue = std::variant<bool, std::int64_t, std::string_view, const StringList*>;

// A count that grows with every change on a form, by which hosts find what they have not shown yet. 0 means
// that nothing has been changed.
using Revision = std::uint64_t;

// The user's act is not possible: the control is disabled, hidden, or of another kind, or has no such item.
// Raised before anything has changed, and meant for hosts; the text is UTF-8 and begins with the control's
// name.
class Refused : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A control of a form. It enters the form's collection when it is constructed, in that order, and must live
// exactly as long as the form: controls are members of the form's class. Not copyable: handlers and layouts
// refer to it. Texts are UTF-8. All calls belong to the console's thread.
//
// The functions named user_... are what hosts call for the user's acts: they raise Refused when the act is
// not possible, change the control, and run the control's event, in which further events may run, dialogs
// open and the page end. All other functions are for the program; they raise no event except the `change` of
// a text field. Setting a property to the value that it has changes no revision.
class Control {
 public:
  // `name` is fixed and should be unique on the form: scripts, the command line and the browser use it.
  Control(Form& form, ControlKind kind, std::string_view name);
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;
  virtual ~Control() = default;

  // As given to the constructor.
  const std::string& name() const { return name_; }
  ControlKind kind() const { return kind_; }
  Form& form() const { return form_; }

  // Whether the control's kind has the property, so that get() does not raise.
  bool has(Property property) const;
  // Raises error 438 if the control does not have this property.
  PropertyValue get(Property property) const;
  // For the texts `caption` and `tool_tip`; raises error 438 as get() does.
  void set(Property property, std::string_view text);

  // Setting the tool tip raises error 438 on a control without one, a timer for example. `enabled` and
  // `visible` are the control's own state, whatever that of the frames around it; see usable().
  const std::string& tool_tip() const { return tool_tip_; }
  void set_tool_tip(std::string_view text);
  bool enabled() const { return enabled_; }
  void set_enabled(bool enabled);
  bool visible() const { return visible_; }
  void set_visible(bool visible);

  // The form's revision at which the property, or any property, was last changed.
  Revision revision(Property property) const { return revisions_[static_cast<std::size_t>(property)]; }
  Revision revision() const { return newest_; }

  // The frame that the form's layout puts the control into, or null. Set by Form::set_layout().
  Frame* container() const { return container_; }
  void set_container(Frame* frame) { container_ = frame; }

  // Whether it is enabled and visible, and so are the frames around it.
  bool usable() const;

  // Whether the user has typed a text into it that no act has used yet, and that the program has not
  // replaced: leaving the form would lose it. See Form::run_using().
  bool unsaved() const { return unsaved_; }
  // Whether the program has put another text in the place of an unsaved one since. Hosts that keep typed
  // texts may offer it again.
  bool set_aside() const { return set_aside_; }

  // The fields whose texts the user's act on this control replaces: choosing another script, for example.
  // Hosts with a screen ask before the act if one of them is unsaved. To be called before the form is shown;
  // the controls belong to the same form.
  void set_replaces(std::initializer_list<const Control*> fields) { replaces_ = fields; }
  const std::vector<const Control*>& replaces() const { return replaces_; }

  // The user's acts, see above. The default raises Refused; the kinds override what they support. user_type()
  // replaces the whole text; `index` counts from 0.
  virtual void user_click();
  virtual void user_type(std::string_view text);
  virtual void user_choose(std::int64_t index);
  virtual void user_scroll(std::int64_t value);
  virtual void user_tick();

 protected:
  // Stamps the property with a new revision of the form. To be called after the change.
  void changed(Property property);
  // Raises Refused, which says whether the control is hidden or disabled.
  void require_usable() const;
  [[noreturn]] void refuse(std::string_view why) const;
  // The properties that only some kinds have; called only for those of properties_of(kind()).
  virtual PropertyValue own(Property property) const;

  // For the kinds that take typed texts. What the user types is unsaved unless it is `before`, the text that
  // stood there first; what the program puts in its place is not.
  void typed(std::string_view before, std::string_view text);
  void replaced();
  // A handler has read the text. What it reads after it has replaced the typed text is its own.
  void used() const { used_ = used_ || unsaved_; }

  std::string caption_;

 private:
  friend class Form;
  void put_unsaved(bool unsaved, bool set_aside = false);

  Form& form_;
  std::string name_;
  std::string tool_tip_;
  Frame* container_ = nullptr;
  std::vector<const Control*> replaces_;
  std::string before_typing_;  // while it is unsaved
  std::array<Revision, property_count> revisions_{};
  Revision newest_ = 0;
  ControlKind kind_;
  bool enabled_ = true;
  bool visible_ = true;
  bool unsaved_ = false;
  bool set_aside_ = false;
  mutable bool used_ = false;
};

}  // namespace zrl
