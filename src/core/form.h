#pragma once

#include <functional>
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

// A page or a dialog: an ordered collection of controls, their layout, and the running of their events. Its
// controls are members of the derived class and die with it. Texts are UTF-8. A form belongs to the thread of
// its console, which must outlive it. Whoever runs an event must keep the form alive until that has ended.
class Form {
 public:
  // `name` is how hosts and the activity record call the form, "general" for example; `caption` is English.
  Form(Console& console, std::string_view name, std::string_view caption);
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;
  virtual ~Form() = default;

  const std::string& name() const { return name_; }
  const std::string& caption() const { return caption_; }
  // Changes the form's revision, but none of a control.
  void set_caption(std::string_view caption);
  Console& console() const { return console_; }

  // The query with which a page would show what it shows, empty if it needs none, see Page::show_query().
  // Hosts with an address bar keep it there. Changes the form's revision, but none of a control.
  const std::string& query() const { return query_; }
  void set_query(std::string_view query);

  // In the order of their construction. The form owns none of them through these pointers.
  std::span<Control* const> controls() const { return controls_; }
  // Raises error 9 past the end.
  Control& control_at(std::size_t index) const;
  // Null if there is none of this name; case matters.
  Control* find(std::string_view name) const;

  // Null if the form has none.
  const LayoutNode* layout() const { return layout_ ? &*layout_ : nullptr; }

  // Grows with every change of any control, and of the caption.
  Revision revision() const { return revision_; }

  // Runs an event of the form; an empty one does nothing. Never throws: what a handler lets escape is
  // recorded under the form's name and dropped. Events nest when a handler serves the event loop; the end of
  // the outermost one ends the user's action, see Console::begin_action().
  void run(const Event& event);

  // What people call the control: its caption, that of the label that names it or of the frame around it, or
  // else its name.
  std::string label_of(const Control& control) const;

  // Runs an act of the user's on the form; `act` is true if it did all that it meant to. The unsaved texts
  // that its handlers read count as saved then, for whatever a page does with a text it reads it first.
  // Passes on what `act` raises.
  void run_using(const std::function<bool()>& act);
  // The controls with unsaved texts.
  std::vector<const Control*> unsaved() const;

  // A dialog is open from Console::show() until it is closed. A page is never open in this sense.
  bool is_open() const { return open_; }
  void set_open(bool open) { open_ = open; }
  // The user or the program closes the dialog. The console drops it at the next call of Console::dialogs().
  virtual void close() { set_open(false); }

 protected:
  // To be called once, at the end of the constructor: it also sets the frames that contain the controls.
  void set_layout(LayoutNode layout);

  // Translates the captions and tool tips of all controls, and those of columns, into the console's language.
  // Never throws; a text that cannot be translated stays as it is. Not the form's own caption.
  void translate_controls();
  // One text, for captions that are set later; see Localisation::translate().
  std::string translate(std::string_view text);

 private:
  friend class Control;
  void add(Control& control) { controls_.push_back(&control); }
  Revision next_revision() { return ++revision_; }

  Console& console_;
  std::string name_;
  std::string caption_;
  std::string query_;
  std::vector<Control*> controls_;
  std::optional<LayoutNode> layout_;
  Revision revision_ = 0;
  bool open_ = false;
};

}  // namespace zrl
