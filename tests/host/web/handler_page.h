#pragma once

#include <span>
#include <string>

#include "catalogue/catalogue.h"
#include "core/page.h"

namespace zrl::test {

// A page whose handlers do what is hard on a host: they wait, block, open dialogs, fail. What they
// wait for is a file of the name "go" in the console's folder.
class HandlerPage : public Page {
 public:
  explicit HandlerPage(Console& console);

  Label state{*this, "state", ""};
  Label answers{*this, "answers", ""};
  Label clicks{*this, "clicks", "0"};
  Label ticks{*this, "ticks", "0"};
  TextField shouted{*this, "shouted", "Its text becomes upper case"};
  TextField reset{*this, "reset", "Nothing stays in it"};
  TextField code{*this, "code", "Marked where it is wrong", {.multi_line = true, .source = true}};
  Button count{*this, "count", "Count"};
  Button ask{*this, "ask", "Ask twice"};
  Button block{*this, "block", "Block"};
  Button pump{*this, "pump", "Let events run"};
  Button pause{*this, "pause", "Wait for a moment"};
  Button write{*this, "write", "Write a hostile text"};
  Button write_many{*this, "write_many", "Write 1,200 times"};
  Button read{*this, "read", "Fail to read"};
  Button raise{*this, "raise", "Raise an error"};
  Button german{*this, "german", "Choose German"};
  Button dialog{*this, "dialog", "Open a dialog"};
  TextField command{*this, "command", "A program with its operands, parted by blanks"};
  Button program{*this, "program", "Start a program"};
  Timer timer{*this, "timer", 10, false};
  CheckBox ticking{*this, "ticking", "Tick"};
  ListBox list{*this, "list"};
  Button shorten{*this, "shorten", "Leave one row"};
  Button empty{*this, "empty", "Empty the list"};

 private:
  void load() override;
  void hide() override;
  bool may_go() const;

  int click_count_ = 0;
  int tick_count_ = 0;
  int pumping_ = 0;
};

// Shows a message box while it is loaded.
class BoxedPage : public Page {
 public:
  explicit BoxedPage(Console& console) : Page(console, "boxed", "Boxed") {}

  Label state{*this, "state", "loading"};

 private:
  void load() override;
};

// "handlers", "boxed", "allcontrols", and "broken", which cannot be made.
std::span<const PageEntry> test_pages();

}  // namespace zrl::test
