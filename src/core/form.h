#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/control.h"
#include "core/controls.h"
#include "core/layout.h"

namespace zrl {

class Console;

// A page or a dialog: an ordered collection of controls, their layout, and the running of their
// events. No error leaves an event: what a handler lets escape is recorded and dropped.
class Form {
 public:
  // `name` is what hosts and steps call the form, "general" say.
  Form(Console& console, std::string_view name, std::string_view caption);
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;
  virtual ~Form() = default;

  const std::string& name() const { return name_; }
  const std::string& caption() const { return caption_; }
  void set_caption(std::string_view caption);
  Console& console() const { return console_; }

  std::span<Control* const> controls() const { return controls_; }
  // Raises error 9 past the end.
  Control& control_at(std::size_t index) const;
  // Null if there is none of this name; case matters.
  Control* find(std::string_view name) const;

  const LayoutNode* layout() const { return layout_ ? &*layout_ : nullptr; }

  // Grows with every change of any control.
  Revision revision() const { return revision_; }

  // Runs an event of the form; the outermost event ends the user's action.
  void run(const Event& event);

  // A dialog is open from Console::show until it is closed.
  bool is_open() const { return open_; }
  void set_open(bool open) { open_ = open; }
  // The user or the program closes the dialog.
  virtual void close() { set_open(false); }

 protected:
  void set_layout(LayoutNode layout);

  // Puts the captions and tool tips of all controls into the console's language.
  void translate_controls();
  std::string translate(std::string_view text);

 private:
  friend class Control;
  void add(Control& control) { controls_.push_back(&control); }
  Revision next_revision() { return ++revision_; }

  Console& console_;
  std::string name_;
  std::string caption_;
  std::vector<Control*> controls_;
  std::optional<LayoutNode> layout_;
  Revision revision_ = 0;
  bool open_ = false;
};

}  // namespace zrl
