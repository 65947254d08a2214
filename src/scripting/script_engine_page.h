#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "core/page.h"
#include "scripting/script_runner.h"

namespace zrl {

// The operator's scripts, which the proxy runs at fixed points of the SMTP dialogue: write them, give
// them a position, run them on sample input. Saving, deleting and running act on the script that was
// selected or created last, whatever the name field shows now. Scripts reach nothing but what
// ConsoleScriptHost provides, and their time and memory are limited.
class ScriptEnginePage : public Page {
 public:
  explicit ScriptEnginePage(Console& console);

  Frame Frame1{*this, "Frame1", "Script Engine"};
  CheckBox scriptcheck{*this, "scriptcheck", "Enable Script Engine",
                       "Lets the proxy run the scripts of each position"};

  ComboBox scriptnamen{*this,
                       "scriptnamen",
                       "The script to edit, or the name of a new one; it is also the name of the function",
                       {.editable = true, .placeholder = "check_sender"}};
  Label Label2{*this, "Label2", "Function Name", scriptnamen};
  CheckBox allscripts{*this, "allscripts", "Show all scripts",
                      "Lists the scripts that are not marked as visible too"};
  Button insertnew{*this, "insertnew", "Create new Script from Template",
                   "Stores a new script under the name above; blanks in it become \"_\". Asks before it "
                   "replaces a script of this name by the text in the editor"};

  ComboBox sposition{
      *this, "sposition", "When the proxy runs the script; at \"Never\" only others call it", {}};
  Label Label1{*this, "Label1", "Position", sposition};
  CheckBox svisible{
      *this, "svisible", "Visible",
      "Lists the script; one that is not visible is loaded at every position. A click saves the script"};
  TextField scriptsource{*this,
                         "scriptsource",
                         "The source text: a function of the script's name with one argument",
                         {.multi_line = true, .fixed_pitch = true, .source = true}};
  Label Label5{*this, "Label5", "Source text", scriptsource};
  Button savechunk{*this, "savechunk", "Save",
                   "Stores the script in the database, and a copy in the folder \"scripts\""};
  Button deletefromdb{*this, "deletefromdb", "Delete from Database",
                      "Deletes the script; its copy in the folder \"scripts\" stays"};

  Frame Frame2{*this, "Frame2", "Test run"};
  TextField inputbox{
      *this, "inputbox", "What the scripts get as their argument", {.multi_line = true, .fixed_pitch = true}};
  Label Label3{*this, "Label3", "Inputbox", inputbox};
  Button executescript{*this, "executescript", "Execute Script", "Saves the script and runs it on the input"};
  Button Command1{
      *this, "Command1", "Execute all scripts of <position>",
      "Saves the script, runs all scripts of its position on the input, and adds their results up"};
  Label outputlabel{*this, "outputlabel", ""};
  Label Label4{*this, "Label4", ""};

  Frame Frame3{*this, "Frame3", "Published scripts"};
  Button download{*this, "download", "Download from Server", "Fetches the files that the server publishes"};
  Button update{*this, "update", "Update Database",
                "Fetches the published scripts and merges them into the database"};

 private:
  void show() override;
  void load() override;
  void hide() override { runner_.reset(); }

  void wire();
  void lay_out();

  void fill_script_list();
  void ensure_script_table();
  void select();
  void read_script();
  bool agrees_to_replace(const std::string& name);
  void create();
  void save();
  // `no`: the database did not take it. `not_decided`: somebody else has stored another one, and the person
  // has not said which is to stay.
  enum class Stored : std::uint8_t { yes, no, not_decided };
  Stored store();
  enum class Turn : std::uint8_t { write, again, not_decided };
  Turn compare(RecordSet& stored);
  void write_copy();
  void remove();
  void run_script();
  void run_position();
  void update_database();

  void changed() { savechunk.set_enabled(true); }
  std::string test_input() const;
  std::string echoed_text() const;
  void mark_problems();

  std::unique_ptr<ScriptRunner> runner_;  // null while the page is not shown
  std::string current_script_;            // empty if none is selected

  // The selected script as it was read or stored last; nothing if whatever is stored may be overwritten.
  struct Loaded {
    std::string source;
    std::string position;
  };
  std::optional<Loaded> loaded_;
};

}  // namespace zrl
