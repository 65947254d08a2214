#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "core/control.h"
#include "core/text/string_list.h"

// The kinds of controls. A page declares its controls as members, in the order of its collection:
//
//   Button Command3{*this, "Command3", "Add to blacklist", "Moves the domain to the black list"};
//
// Captions and tool tips are written in English; the page translates them when it is shown.
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

class Frame : public CaptionedControl {
 public:
  Frame(Form& form, std::string_view name, std::string_view caption)
      : CaptionedControl(form, ControlKind::frame, name, caption, {}) {}
};

// A text for the user; with `names`, the name of a control that has no caption of its own. Such a
// label is laid out together with its control.
class Label : public CaptionedControl {
 public:
  Label(Form& form, std::string_view name, std::string_view caption, std::string_view tool_tip = {})
      : CaptionedControl(form, ControlKind::label, name, caption, tool_tip) {}
  Label(Form& form, std::string_view name, std::string_view caption, Control& names)
      : CaptionedControl(form, ControlKind::label, name, caption, {}), names_(&names) {}

  const Control* names() const { return names_; }

 private:
  const Control* names_ = nullptr;
};

class TextField : public Control {
 public:
  struct Style {
    bool multi_line = false;
    bool fixed_pitch = false;
    bool secret = false;  // a password; hosts do not show it
    bool counts = false;  // lines that begin with a count; hosts that can draw show them as bars too
    bool source = false;  // of a script, in "vbscript"; hosts that can edit source text do
    std::string_view placeholder = {};
  };

  // Something that is wrong with a source text.
  struct Mark {
    std::string name;        // of the text that has it
    std::size_t line = 0;    // from 1; 0 where there is no place
    std::size_t column = 0;  // from 1, in 16-bit units
    std::string text;
    bool elsewhere = false;  // in another text than the field's

    bool operator==(const Mark&) const = default;
  };

  TextField(Form& form, std::string_view name, std::string_view tool_tip, const Style& style);
  TextField(Form& form, std::string_view name, std::string_view tool_tip)
      : TextField(form, name, tool_tip, Style{}) {}

  Event on_change;  // the text has become different, whoever changed it

  const std::string& text() const { return text_; }
  void set_text(std::string_view text);
  const Style& style() const { return style_; }

  // Hosts show the marks of a field with the style `source` until others are set; typing keeps them.
  const std::vector<Mark>& marks() const { return marks_; }
  void set_marks(std::vector<Mark> marks);

  void user_type(std::string_view text) override;

 private:
  PropertyValue own(Property property) const override;

  std::string text_;
  Style style_;
  std::vector<Mark> marks_;
};

class CheckBox : public CaptionedControl {
 public:
  CheckBox(Form& form, std::string_view name, std::string_view caption, std::string_view tool_tip = {})
      : CaptionedControl(form, ControlKind::check_box, name, caption, tool_tip) {}

  Event on_click;

  bool checked() const { return checked_; }
  void set_checked(bool checked);
  // As options store it: 0 or 1. Setting another number raises error 380.
  std::int16_t value() const { return checked_ ? 1 : 0; }
  void set_value(std::int16_t value);

  void user_click() override;

 private:
  PropertyValue own(Property property) const override;

  bool checked_ = false;
};

// One of the choices that stand in the same frame (or on the form outside all frames).
class OptionButton : public CaptionedControl {
 public:
  OptionButton(Form& form, std::string_view name, std::string_view caption, std::string_view tool_tip = {})
      : CaptionedControl(form, ControlKind::option_button, name, caption, tool_tip) {}

  Event on_click;  // also when it was chosen already

  bool chosen() const { return chosen_; }
  void choose();  // the other choices beside it are no longer chosen

  void user_click() override;

 private:
  PropertyValue own(Property property) const override;

  bool chosen_ = false;
};

class Button : public CaptionedControl {
 public:
  Button(Form& form, std::string_view name, std::string_view caption, std::string_view tool_tip = {})
      : CaptionedControl(form, ControlKind::button, name, caption, tool_tip) {}

  Event on_click;

  void user_click() override;
};

// What the list-like kinds share: items in an arena, and the index of the chosen one (-1: none).
class ItemsControl : public Control {
 public:
  const StringList& items() const { return items_; }
  std::int64_t index() const { return index_; }
  // The chosen text; empty if nothing is chosen.
  std::string_view chosen() const;

 protected:
  ItemsControl(Form& form, ControlKind kind, std::string_view name, std::string_view tool_tip);

  PropertyValue own(Property property) const override;
  void put_items(StringList items);
  void put_index(std::int64_t index);
  void append(std::string_view item);
  // Raises Refused if there is no such item.
  void require_item(std::int64_t index) const;

 private:
  StringList items_;
  std::int64_t index_ = -1;
};

class ListBox : public ItemsControl {
 public:
  ListBox(Form& form, std::string_view name, std::string_view tool_tip = {})
      : ItemsControl(form, ControlKind::list_box, name, tool_tip) {}

  Event on_click;

  void clear() { put_items({}); }
  void add_item(std::string_view item) { append(item); }
  // Takes the list over without copying it; nothing is chosen then.
  void set_items(StringList items) { put_items(std::move(items)); }
  // Raises error 380 if there is no such item; -1 chooses nothing.
  void set_index(std::int64_t index);
  // Chooses the item and runs its click, on purpose.
  void click_item(std::int64_t index);

  void user_choose(std::int64_t index) override;
};

// A drop-down list, with or without an edit field.
class ComboBox : public ItemsControl {
 public:
  struct Style {
    bool editable = false;
    std::string_view placeholder = {};  // shown while the text is empty
  };

  ComboBox(Form& form, std::string_view name, std::string_view tool_tip, const Style& style);

  Event on_click;   // an item was chosen
  Event on_change;  // the text was edited

  void clear() {
    put_items({});
    set_text({});
  }
  void add_item(std::string_view item) { append(item); }
  void set_items(StringList items) { put_items(std::move(items)); }
  const std::string& text() const { return text_; }
  // Chooses the item with this text if there is one. A list without an edit field takes any text
  // too, because pages show stored values that are not among the choices.
  void set_text(std::string_view text);
  const Style& style() const { return style_; }

  void user_type(std::string_view text) override;
  void user_choose(std::int64_t index) override;

 private:
  PropertyValue own(Property property) const override;
  void put_text(std::string_view text);

  std::string text_;
  Style style_;
};

// Ticks while it is enabled and its interval is above 0.
class Timer : public Control {
 public:
  Timer(Form& form, std::string_view name, std::int64_t interval_ms, bool enabled);

  Event on_tick;

  std::int64_t interval() const { return interval_; }  // milliseconds
  void set_interval(std::int64_t interval_ms);         // 0 to 65,535, else error 380

  void user_tick() override;

 private:
  PropertyValue own(Property property) const override;

  std::int64_t interval_;
};

// Takes a position from min() to max().
class ScrollBar : public Control {
 public:
  ScrollBar(Form& form, std::string_view name, std::string_view tool_tip);

  Event on_change;  // the user moved it to another position

  std::int64_t value() const { return value_; }
  std::int64_t min() const { return min_; }
  std::int64_t max() const { return max_; }
  void set_value(std::int64_t value);  // raises error 380 outside the range
  // The position stays as near as the new range lets it.
  void set_range(std::int64_t min, std::int64_t max);

  void user_scroll(std::int64_t value) override;

 private:
  PropertyValue own(Property property) const override;

  std::int64_t value_ = 0;
  std::int64_t min_ = 0;
  std::int64_t max_ = 0;
};

// The lists of the file system of the machine that the console runs on. `text` is the drive or the
// folder, with "\" between its parts. What cannot be read shows as empty.
class PathList : public ItemsControl {
 public:
  const std::string& path() const { return path_; }
  void set_path(std::string_view path);  // reads the folder again, also when it is the same
  void refresh() { set_path(std::string(path_)); }

 protected:
  using ItemsControl::ItemsControl;
  PropertyValue own(Property property) const override;
  virtual StringList read(const std::string& path) const = 0;

 private:
  std::string path_;
};

// The roots that can be chosen: the file system's root, the account's home, mounted media.
class DriveList : public PathList {
 public:
  DriveList(Form& form, std::string_view name, std::string_view tool_tip = {})
      : PathList(form, ControlKind::drive_list, name, tool_tip) {}
  Event on_change;
  void user_choose(std::int64_t index) override;

 private:
  StringList read(const std::string& path) const override;
};

// The folders in a folder, sorted; ".." first where there is a parent. Choosing one enters it.
class FolderList : public PathList {
 public:
  FolderList(Form& form, std::string_view name, std::string_view tool_tip = {})
      : PathList(form, ControlKind::folder_list, name, tool_tip) {}
  Event on_change;
  void user_choose(std::int64_t index) override;

 private:
  StringList read(const std::string& path) const override;
};

// The files in a folder, sorted.
class FileList : public PathList {
 public:
  FileList(Form& form, std::string_view name, std::string_view tool_tip = {})
      : PathList(form, ControlKind::file_list, name, tool_tip) {}
  Event on_click;
  void user_choose(std::int64_t index) override;

 private:
  StringList read(const std::string& path) const override;
};

}  // namespace zrl
