#pragma once

#include "core/page.h"

namespace zrl {

// The texts that the filtering service sends at fixed points of an SMTP conversation: whole reply
// lines, their codes included.
class StringsPage : public Page {
 public:
  explicit StringsPage(Console& console);

  Frame Frame1{*this, "Frame1", "Reply lines"};
  TextField welcome{*this,
                    "welcome",
                    "What clients are greeted with. Each line is a reply line: the last one begins with "
                    "\"220 \", all others with \"220-\"",
                    {.multi_line = true, .fixed_pitch = true}};
  Label Label1{*this, "Label1", "Banner", welcome};
  TextField hello{*this, "hello", "The answer to HELO and EHLO, with its code (250)", {.fixed_pitch = true}};
  Label Label2{*this, "Label2", "Reply to HELO and EHLO", hello};
  TextField bye{*this, "bye", "The answer to QUIT, with its code (221)", {.fixed_pitch = true}};
  Label Label3{*this, "Label3", "Reply to QUIT", bye};
  TextField queue{
      *this, "queue", "The answer to a mail that was accepted, with its code (250)", {.fixed_pitch = true}};
  Label Label4{*this, "Label4", "Reply to a queued mail", queue};

  Button updatedb{*this, "updatedb", "Save",
                  "Stores the four texts without blanks at their ends; an empty field keeps its stored text"};
  Button Command1{*this, "Command1", "Reload",
                  "Reads the stored texts again; what was typed and not saved is lost"};
  Button Command2{*this, "Command2", "Default banner",
                  "Replaces the banner by the product's banner of five lines and stores it"};

 private:
  void load() override { load_strings(); }

  void load_strings();
  void store_strings();
  void store_default_banner();
};

}  // namespace zrl
