#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/control.h"
#include "core/expectation.h"
#include "core/loss.h"
#include "core/text/string_list.h"

// The kinds of controls. A page declares its controls as members, in the order of its collection:
//
//   Button Command3{*this, "Command3", "Add to blacklist", "Moves the domain to the black list"};
//
// Captions and tool tips are written in English; the page translates them when it is shown. Names, captions,
// tool tips and texts are UTF-8; names and tool tips given to a constructor are copied, placeholders are not.
//
// Events are members that the page sets once. An event that is not set does nothing. Form::run() runs them,
// so no exception of a handler reaches the caller of a user_... function.
namespace zrl {

using Event = std::function<void()>;

// A control with the property `caption`.
class CaptionedControl : public Control {
 public:
  CaptionedControl(Form& form, ControlKind kind, std::string_view name, std::string_view caption,
                   std::string_view tool_tip);

  const std::string& caption() const { return caption_; }
  void set_caption(std::string_view caption) { set(Property::caption, caption); }
};

// A titled group, see frame() in layout.h. Disabling or hiding it makes the controls inside unusable, whose
// own properties stay as they are.
class Frame : public CaptionedControl {
 public:
  Frame(Form& form, std::string_view name, std::string_view caption)
      : CaptionedControl(form, ControlKind::frame, name, caption, {}) {}
};

// A text for the user; with `names`, the label of a control that has no caption of its own. Such a label is
// laid out together with its control, which must belong to the same form.
class Label : public CaptionedControl {
 public:
  Label(Form& form, std::string_view name, std::string_view caption, std::string_view tool_tip = {})
      : CaptionedControl(form, ControlKind::label, name, caption, tool_tip) {}
  Label(Form& form, std::string_view name, std::string_view caption, Control& names)
      : CaptionedControl(form, ControlKind::label, name, caption, {}), names_(&names) {}

  const Control* names() const { return names_; }

  // Whether what the text says is good or bad, where that is not the same for all its texts. Hosts colour it.
  enum class Tone : std::uint8_t { plain, good, waiting, bad };
  Tone tone() const { return tone_; }
  void set_tone(Tone tone);

 private:
  const Control* names_ = nullptr;
  Tone tone_ = Tone::plain;
};

// "plain", "good" and so on, as hosts print it.
std::string_view name_of(Label::Tone tone);

// A text that the user may edit, of one line or several; its length is not limited here. What the page sets
// is kept byte for byte; hosts make it printable.
class TextField : public Control {
 public:
  // How hosts show the field; fixed from construction on. `placeholder` is English and not copied: a literal.
  struct Style {
    bool multi_line = false;
    bool fixed_pitch = false;
    bool secret = false;  // a password; hosts do not show it
    bool counts = false;  // lines that begin with a count; hosts that can draw also show them as bars
    bool source = false;  // the source text of a script; hosts with an editor for such texts use it
    bool path = false;    // a product path; hosts may show it as their file system writes paths
    std::string_view placeholder = {};
  };

  // A fault in a source text, for example a syntax error of a script.
  struct Mark {
    std::string name;        // of the source text that has the fault
    std::size_t line = 0;    // from 1; 0 if the place is not known
    std::size_t column = 0;  // from 1, in 16-bit units
    std::string text;
    bool elsewhere = false;  // in another text than the field's

    bool operator==(const Mark&) const = default;
  };

  TextField(Form& form, std::string_view name, std::string_view tool_tip, const Style& style);
  TextField(Form& form, std::string_view name, std::string_view tool_tip)
      : TextField(form, name, tool_tip, Style{}) {}

  // The text has become different, whether the user or the program changed it.
  Event on_change;

  // The reference is valid as long as the field, its content until the next change. Reading it is what makes
  // a typed text used, see Form::run_using(); hosts read the property instead.
  const std::string& text() const {
    used();
    return text_;
  }
  void set_text(std::string_view text);
  const Style& style() const { return style_; }

  // What the text is meant to be; hosts with a screen say what does not fit. To be called before the form is
  // shown.
  void set_expects(const Expectation& expected) { expected_ = expected; }
  const Expectation& expects() const { return expected_; }

  // What is typed chooses the rows that the form shows, as the filter of a table does: it acts at once, so
  // there is nothing to save, and it is never unsaved(). To be called before the form is shown.
  void set_chooses_rows() { chooses_rows_ = true; }
  bool chooses_rows() const { return chooses_rows_; }

  // Hosts show the marks of a field with the style `source` until others are set. Changing the text does not
  // remove them, so their places may no longer fit.
  const std::vector<Mark>& marks() const { return marks_; }
  void set_marks(std::vector<Mark> marks);

  void user_type(std::string_view text) override;

 private:
  PropertyValue own(Property property) const override;

  std::string text_;
  Style style_;
  Expectation expected_;
  std::vector<Mark> marks_;
  bool typing_ = false;
  bool chooses_rows_ = false;
};

// Checked or not. A user's click toggles it, then runs on_click; the program's setters run nothing.
class CheckBox : public CaptionedControl {
 public:
  CheckBox(Form& form, std::string_view name, std::string_view caption, std::string_view tool_tip = {})
      : CaptionedControl(form, ControlKind::check_box, name, caption, tool_tip) {}

  Event on_click;

  bool checked() const { return checked_; }
  void set_checked(bool checked);
  // As options store it: 0 or 1. Setting another number raises error 380 and changes nothing.
  std::int16_t value() const { return checked_ ? 1 : 0; }
  void set_value(std::int16_t value);

  void user_click() override;

 private:
  PropertyValue own(Property property) const override;

  bool checked_ = false;
};

// One of several choices: of the option buttons in the same frame (or on the form outside all frames) at most
// one is chosen.
class OptionButton : public CaptionedControl {
 public:
  OptionButton(Form& form, std::string_view name, std::string_view caption, std::string_view tool_tip = {})
      : CaptionedControl(form, ControlKind::option_button, name, caption, tool_tip) {}

  Event on_click;  // also when it was chosen already

  bool chosen() const { return chosen_; }
  // Chooses it in place of the others; runs no event.
  void choose();

  void user_click() override;

 private:
  PropertyValue own(Property property) const override;

  bool chosen_ = false;
};

// A text that opens another page, with a query that fills it (Page::open_query()). A query never writes, so
// links may be kept, shared, and opened beside the page that shows them.
class Link : public CaptionedControl {
 public:
  Link(Form& form, std::string_view name, std::string_view caption, std::string_view tool_tip = {})
      : CaptionedControl(form, ControlKind::link, name, caption, tool_tip) {}

  const std::string& page() const { return page_; }
  const std::string& query() const { return query_; }
  // The name of a page, as in the catalogue. While it is empty the link leads nowhere and is refused.
  void set_target(std::string_view page, std::string_view query);

  // Asks the host to open the page, see Host::open_page().
  void user_click() override;

 private:
  PropertyValue own(Property property) const override;

  std::string page_;
  std::string query_;
};

class ItemsControl;

// Nothing disables a button while its event runs, so a second click may come in an event loop that the
// handler serves; Page::bind_busy() prevents that.
class Button : public CaptionedControl {
 public:
  Button(Form& form, std::string_view name, std::string_view caption, std::string_view tool_tip = {})
      : CaptionedControl(form, ControlKind::button, name, caption, tool_tip) {}

  Event on_click;

  // The controls that the act works on: it makes sense only if one of them holds a text or has an item
  // chosen. Hosts with a screen say so in place of running the click; the button itself checks nothing.
  // Empty: it needs nothing. To be called before the form is shown; the controls belong to the same form.
  void set_needs(std::initializer_list<const Control*> controls) { needs_ = controls; }
  const std::vector<const Control*>& needs() const { return needs_; }

  // The act refuses every text of the field but such: hosts with a screen explain that in place of running
  // the click; the button itself checks nothing. To be called before the form is shown.
  struct Taken {
    const TextField* field = nullptr;  // null: the act takes anything
    Expectation text;
  };
  void set_takes(const TextField& field, const Expectation& text) { taken_ = {&field, text}; }
  const Taken& takes() const { return taken_; }

  // The act for which people come to the form. Hosts make it stand out; to be called before the form is
  // shown.
  void set_primary() { primary_ = true; }
  bool primary() const { return primary_; }

  // The act destroys what cannot be taken back. Hosts with a screen make the button look dangerous, and ask
  // before they run the click, with the number that `count` gives then; the button itself asks nothing.
  // Without `count` the number cannot be told. With `items`, an act on all of them, it is theirs. To be
  // called before the form is shown; `loss` is kept by reference.
  void set_destroys(const Loss& loss, LossCount count = {});
  void set_destroys(const Loss& loss, const ItemsControl& items);
  // Null if the act destroys nothing.
  const Loss* destroys() const { return loss_; }
  // Nothing if it cannot be told. Runs the form's count as an event.
  std::optional<std::uint64_t> count_loss();

  void user_click() override;

 private:
  std::vector<const Control*> needs_;
  Taken taken_;
  bool primary_ = false;
  const Loss* loss_ = nullptr;
  LossCount count_;
};

// What the entries of a list, or the text of a field, are. Hosts offer to look up those that are anything but
// `other`.
enum class EntryKind : std::uint8_t { other, address, network, domain, mail_address, word };

// "address", "mail" and so on, as hosts print it.
std::string_view name_of(EntryKind kind);

// What the list-like kinds share: items in one arena, and the index of the chosen one. A list may have
// millions of items.
class ItemsControl : public Control {
 public:
  const StringList& items() const { return items_; }
  // From 0; -1 if nothing is chosen.
  std::int64_t index() const { return index_; }
  // The chosen text; empty if nothing is chosen. A view into items(), valid until these are changed.
  std::string_view chosen() const;

 protected:
  ItemsControl(Form& form, ControlKind kind, std::string_view name, std::string_view tool_tip);

  PropertyValue own(Property property) const override;
  // Replaces all items; nothing is chosen then.
  void put_items(StringList items);
  // Checks nothing; the callers have.
  void put_index(std::int64_t index);
  void append(std::string_view item);
  // Raises Refused if the control is not usable or has no such item.
  void require_item(std::int64_t index) const;

 private:
  StringList items_;
  std::int64_t index_ = -1;
};

// A list of which one item may be chosen. Choosing the item that is chosen already runs on_click again.
class ListBox : public ItemsControl {
 public:
  ListBox(Form& form, std::string_view name, std::string_view tool_tip = {})
      : ItemsControl(form, ControlKind::list_box, name, tool_tip) {}

  Event on_click;

  // How people edit the list: choosing an item copies it into `entry`, `add` puts the text of `entry` on the
  // list, and `remove` takes it off. Lists may share a field and a button; what a list lacks is null. Hosts
  // offer both acts by keyboard, and the removal of several items. Changes nothing in what the controls do.
  struct Acts {
    const TextField* entry = nullptr;
    Button* add = nullptr;
    Button* remove = nullptr;
  };
  const Acts& acts() const { return acts_; }
  // Makes both buttons need the entry, too. To be called before the form is shown.
  void set_acts(const Acts& acts);

  // To be called before the form is shown.
  void set_entries_are(EntryKind kind) { entries_ = kind; }
  EntryKind entries() const { return entries_; }
  // The button that opens a dialog in which the list is exchanged with files (FileList::Exchange): where a
  // file leads that people drop on the list. To be called before the form is shown.
  void set_transfer(Button& button) { transfer_ = &button; }
  // Null if there is none.
  const Button* transfer() const { return transfer_; }

  void clear() { set_items({}); }
  void add_item(std::string_view item) { append(item); }
  // Takes ownership of the list without copying its texts; nothing is chosen then.
  void set_items(StringList items);
  // Raises error 380 if there is no such item; -1 chooses nothing.
  void set_index(std::int64_t index);
  // Chooses the item, as set_index() does, and runs on_click: for pages that act for the user.
  void click_item(std::int64_t index);

  // Others have changed the rows that the box shows. Hosts tell people, who may have the box filled anew:
  // on_reload. Filling it in any way ends that.
  bool stale() const { return stale_; }
  void set_stale(bool stale);
  Event on_reload;

  void user_choose(std::int64_t index) override;
  void user_reload();

 private:
  Acts acts_;
  EntryKind entries_ = EntryKind::other;
  const Button* transfer_ = nullptr;
  bool stale_ = false;
};

// A drop-down list, with or without an edit field. Its text need not be one of the items.
class ComboBox : public ItemsControl {
 public:
  // As the style of a text field: fixed, and the placeholder is a literal.
  struct Style {
    bool editable = false;
    std::string_view placeholder = {};  // shown while the text is empty
    bool words = false;  // the items are English words, for machines; hosts translate them for people
  };

  ComboBox(Form& form, std::string_view name, std::string_view tool_tip, const Style& style);

  Event on_click;   // the user chose an item
  Event on_change;  // the user edited the text

  // Removes the items and the text.
  void clear() {
    put_items({});
    set_text({});
  }
  void add_item(std::string_view item) { append(item); }
  void set_items(StringList items) { put_items(std::move(items)); }
  const std::string& text() const {
    used();
    return text_;
  }
  // Sets the text and chooses the first item with this text; nothing is chosen if there is none. A list
  // without an edit field accepts any text too, because pages show stored values that are not among the
  // choices. Runs no event.
  void set_text(std::string_view text);
  const Style& style() const { return style_; }

  // Without an edit field, typing chooses the item with this text, and is refused if there is none.
  void user_type(std::string_view text) override;
  void user_choose(std::int64_t index) override;

 private:
  PropertyValue own(Property property) const override;
  void put_text(std::string_view text);
  void choose_text();

  std::string text_;
  Style style_;
};

// Ticks while it is enabled and its interval is above 0. It has no clock of its own: the host calls
// user_tick() when the interval has passed, later if a handler is running then, and makes up for no tick.
class Timer : public Control {
 public:
  // The interval given here is not checked.
  Timer(Form& form, std::string_view name, std::int64_t interval_ms, bool enabled);

  Event on_tick;

  std::int64_t interval() const { return interval_; }  // milliseconds
  void set_interval(std::int64_t interval_ms);         // 0 to 65,535, else error 380

  void user_tick() override;

 private:
  PropertyValue own(Property property) const override;

  std::int64_t interval_;
};

// Has a position from min() to max(), both included; all three are 0 at first.
class ScrollBar : public Control {
 public:
  ScrollBar(Form& form, std::string_view name, std::string_view tool_tip);

  Event on_change;  // the user moved it to another position

  std::int64_t value() const { return value_; }
  std::int64_t min() const { return min_; }
  std::int64_t max() const { return max_; }
  void set_value(std::int64_t value);  // raises error 380 outside the range
  // Moves the position into the new range if it is outside. Raises error 380 if `max` is below `min`.
  void set_range(std::int64_t min, std::int64_t max);

  void user_scroll(std::int64_t value) override;

 private:
  PropertyValue own(Property property) const override;

  std::int64_t value_ = 0;
  std::int64_t min_ = 0;
  std::int64_t max_ = 0;
};

// The lists of the file system of the machine that the console runs on, which is not the user's where the
// host is a web server. The property `text` is the drive or the folder, a product path (core/text/paths.h).
// What cannot be read shows as empty; no operation raises an error for it. Names are the file system's bytes,
// sorted by them, and need not be UTF-8.
class PathList : public ItemsControl {
 public:
  const std::string& path() const { return path_; }
  // Reads the folder again, even if the path is the same. Runs no event.
  void set_path(std::string_view path);
  void refresh() { set_path(std::string(path_)); }

 protected:
  using ItemsControl::ItemsControl;
  PropertyValue own(Property property) const override;
  // The items for a product path; empty if it cannot be read.
  virtual StringList read(const std::string& path) const = 0;

 private:
  std::string path_;
};

// The roots that can be chosen: the file system's root, the home folder of the console's account, and those
// of /media, /mnt and /srv that are not empty.
class DriveList : public PathList {
 public:
  DriveList(Form& form, std::string_view name, std::string_view tool_tip = {})
      : PathList(form, ControlKind::drive_list, name, tool_tip) {}
  Event on_change;
  void user_choose(std::int64_t index) override;

 private:
  StringList read(const std::string& path) const override;
};

// The folders in a folder, sorted; ".." first if there is a parent. Those of the console's own are left out.
// Choosing one enters it: the path changes, and nothing is chosen afterwards.
class FolderList : public PathList {
 public:
  FolderList(Form& form, std::string_view name, std::string_view tool_tip = {})
      : PathList(form, ControlKind::folder_list, name, tool_tip) {}
  Event on_change;
  void user_choose(std::int64_t index) override;

 private:
  StringList read(const std::string& path) const override;
};

// The regular files in a folder, sorted. The console's own (core/contracts/console_folder.h) are left out.
class FileList : public PathList {
 public:
  FileList(Form& form, std::string_view name, std::string_view tool_tip = {})
      : PathList(form, ControlKind::file_list, name, tool_tip) {}
  Event on_click;
  void user_choose(std::int64_t index) override;

  // What the form does with a file: clicking `run` writes the one that `path` names while `exports` is
  // chosen, and reads it otherwise. Hosts on another machine than the user's send it files of theirs, and
  // fetch what it writes for them. The controls belong to the same form.
  struct Exchange {
    TextField* path = nullptr;
    Button* run = nullptr;
    OptionButton* exports = nullptr;  // null if files are only read
    OptionButton* imports = nullptr;  // what a file is for unless the user says otherwise; may be null
    const Label* result = nullptr;    // says what came of it; may be null
  };
  // To be called before the form is shown; `path` and `run` are needed.
  void set_exchange(const Exchange& exchange) { exchange_ = exchange; }
  // Null if nothing was declared.
  const Exchange* exchange() const { return exchange_ ? &*exchange_ : nullptr; }

 private:
  StringList read(const std::string& path) const override;

  std::optional<Exchange> exchange_;
};

}  // namespace zrl
