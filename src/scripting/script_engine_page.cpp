#include "scripting/script_engine_page.h"

#include "core/contracts/console_folder.h"
#include "core/text/error.h"
#include "core/text/paths.h"
#include "core/text/text.h"
#include "core/text/utf16.h"
#include "core/text_file.h"
#include "pages/lists/remote_update.h"

namespace zrl {

namespace {

constexpr std::string_view positions[] = {"Never",     "CONNECT",    "ENVELOPE", "HEADER",
                                          "HEADERENV", "BODYSTREAM", "BODY",     "AV"};

constexpr Sentence script_deleted{"Script %1 deleted", "Script %1 not deleted"};
constexpr Sentence scripts_taken{"Published scripts taken over", "Published scripts not taken over"};

Statement script_row(std::string_view name) {
  return "SELECT * FROM scriptengine WHERE scriptname='" + value(name) + "'";
}

std::string script_template(const std::string& name) {
  return "Function " + name + "(input)\r\n" +
         "On Error Resume Next\r\n"
         "\r\n"
         "\t" +
         name +
         "=0\t\t\t'set return value (always Integer)\r\n"
         "\t'msgbox input\t\t\t'output Testdata\r\n"
         "\r\n"
         "\r\n"
         "End Function \r\n";
}

std::string with_underscores(std::string text) {
  for (char& c : text) {
    if (c == ' ') c = '_';
  }
  return text;
}

}  // namespace

ScriptEnginePage::ScriptEnginePage(Console& console) : Page(console, "ScriptEngine", "Script engine") {
  bind_switches({{scriptcheck, "scriptcheck"}});
  wire();
  lay_out();
  sposition.set_text("never");
  inputbox.set_text("Testdata");
}

void ScriptEnginePage::wire() {
  scriptnamen.on_click = [this] { select(); };
  scriptnamen.on_change = [this] { insertnew.set_enabled(true); };
  scriptsource.on_change = [this] { changed(); };
  scriptnamen.set_replaces({&scriptsource});
  sposition.on_click = [this] { changed(); };
  svisible.on_click = [this] {
    changed();
    save();
  };
  allscripts.on_click = [this] { fill_script_list(); };
  insertnew.on_click = [this] { create(); };
  savechunk.on_click = [this] { save(); };
  deletefromdb.on_click = [this] { remove(); };
  deletefromdb.set_destroys(loss::asked_by_form);
  update.set_destroys(loss::scripts);
  bind_busy(executescript, &ScriptEnginePage::run_script);
  bind_busy(Command1, &ScriptEnginePage::run_position);
  bind_busy(download, [this] {
    std::string status;
    if (fetch_lists(*this, component<Downloader>(), status)) {
      say_done("Files fetched from the server");
    } else {
      say_failed("Nothing fetched from the server");
    }
  });
  bind_busy(update, &ScriptEnginePage::update_database);
}

void ScriptEnginePage::lay_out() {
  set_layout(column({
      grid({scriptcheck}),
      frame(Frame1, column({
                        row({grow(scriptnamen), allscripts, insertnew}),
                        row({grow(sposition), svisible}),
                        grow(scriptsource),
                        row({savechunk, deletefromdb}),
                    })),
      frame(Frame2, column({
                        inputbox,
                        row({executescript, outputlabel}),
                        row({Command1, Label4}),
                    })),
      frame(Frame3, row({download, update})),
  }));
}

void ScriptEnginePage::show() {
  translate_controls();
  connect_database("No Database Connection Possible (Script Engine Control)");
  load();
}

void ScriptEnginePage::load() {
  runner_ = std::make_unique<ScriptRunner>(console());
  fill_script_list();
  sposition.set_text("Never");
  for (const std::string_view position : positions) sposition.add_item(position);
  sposition.set_text("Never");
  load_switch(scriptcheck);
}

// The name field goes on telling which script is being edited.
void ScriptEnginePage::fill_script_list() {
  scriptnamen.clear();
  const auto names =
      ordered_rows("scriptengine", "scriptname",
                   allscripts.checked() ? Literal("svisible<>99") : Literal("svisible=1"), "prio",
                   Failure::expected);  // the table may be missing, which is mended here
  if (names && !names->empty()) {
    scriptnamen.set_items(*names);
  } else {
    ensure_script_table();
  }
  scriptnamen.set_text(current_script_);
}

void ScriptEnginePage::ensure_script_table() {
  const Acts::Routine routine(console().acts());
  create_table("scriptengine",
               "scriptname nvarchar (255) NOT NULL Primary Key, scriptcontent image NULL, sposition "
               "nvarchar(255) null, prio int default 0, svisible int default 0");
}

void ScriptEnginePage::select() {
  scriptsource.set_marks({});
  insertnew.set_enabled(false);
  deletefromdb.set_enabled(true);
  scriptsource.set_text("");
  sposition.set_text("");
  loaded_.reset();
  current_script_ = scriptnamen.text();
  if (!current_script_.empty()) read_script();
  savechunk.set_enabled(false);
}

void ScriptEnginePage::read_script() {
  const auto record = open(script_row(current_script_), Connection::Access::read_only);
  if (!record || record->at_end()) return;
  read_rows("scriptcontent",
            [&] { scriptsource.set_text(from_utf16_bytes(record->bytes("scriptcontent"))); });
  read_rows("sposition", [&] {
    if (!record->is_null("sposition")) sposition.set_text(record->text("sposition"));
  });
  read_rows("scriptcontent", [&] {
    loaded_ = Loaded{from_utf16_bytes(record->bytes("scriptcontent")), upper(record->text("sposition"))};
  });
  read_rows("svisible", [&] {
    const std::int64_t visible = record->number("svisible");
    if (visible != 0 && visible != 1) throw Error(error_number::invalid_property_value, "neither 0 nor 1");
    svisible.set_value(static_cast<std::int16_t>(visible));
  });
}

// The list need not show the script. No name that is stored holds an apostrophe.
bool ScriptEnginePage::agrees_to_replace(const std::string& name) {
  if (name.find('\'') != std::string::npos) return true;
  const auto found = open(script_row(name), Connection::Access::read_only);
  if (!found || found->at_end()) return true;
  const MessageBox question{
      translate("Replace Script"),
      translate("There is a script of this name. Replace it by the text in the editor?") + "\r\n" + name,
      BoxStyle::ok_cancel};
  return console().host().message_box(question) == BoxReply::ok;
}

// A name that exists keeps the text in the editor, which is then saved under it.
void ScriptEnginePage::create() {
  if (scriptnamen.text().empty()) return say_nothing("Nothing stored: a script needs a name");
  const std::string name = with_underscores(scriptnamen.text());
  if (!agrees_to_replace(name)) return;
  loaded_.reset();
  scriptnamen.set_text(name);
  const bool is_new = execute(insert_into("scriptengine", "scriptname", name), Failure::expected);
  current_script_ = name;
  if (is_new) scriptsource.set_text(script_template(name));
  save();
  fill_script_list();
}

void ScriptEnginePage::save() {
  const Stored stored = store();
  savechunk.set_enabled(stored != Stored::yes);
  if (current_script_.empty()) {
    say_nothing("The text belongs to no script; it is kept in a file without a name");
  } else if (stored == Stored::yes) {
    say_done("Script %1 stored", {current_script_});
  } else if (stored == Stored::no) {
    say_failed("Script %1 not stored", {current_script_});
  }
  if (runner_) runner_->loaddb();
  mark_problems();
  if (stored != Stored::not_decided) write_copy();
}

// A text that belongs to no script yet is kept too, in a file without a name.
void ScriptEnginePage::write_copy() {
  write_text_file(console(), to_product_path(console_folder::scripts(console().folder())),
                  current_script_ + ".vbs", scriptsource.text());
}

ScriptEnginePage::Stored ScriptEnginePage::store() {
  const Statement select_row = script_row(current_script_);
  bool begun = false;
  bool found = false;
  std::unique_ptr<RecordSet> record;
  Turn turn = Turn::again;
  while (turn == Turn::again) {
    begun = begin_transaction();
    record = open(select_row, Connection::Access::updatable);
    found = record && !record->at_end();
    turn = begun && found ? compare(*record) : Turn::write;
  }
  if (turn == Turn::not_decided) return Stored::not_decided;
  bool stored = begun && record;
  const auto write = [&](std::string_view column, const auto& set) {
    const bool written = read_rows(column, [&] {
      set();
      record->update();
    });
    stored = stored && written;
  };
  if (found) {
    write("scriptcontent", [&] { record->set_bytes("scriptcontent", to_utf16_bytes(scriptsource.text())); });
    write("sposition", [&] { record->set_text("sposition", upper(sposition.text())); });
    write("svisible", [&] { record->set_number("svisible", svisible.value()); });
  }
  if (!begun) return Stored::no;
  stored = commit(select_row.text(), found ? Step::write : Step::read) && stored;
  if (stored && found) loaded_ = Loaded{scriptsource.text(), upper(sposition.text())};
  return stored ? Stored::yes : Stored::no;
}

// Within the transaction that is going to write, which ends if the person has to be asked: then everything is
// compared once more. What is unchanged here takes the newer value instead of replacing it.
ScriptEnginePage::Turn ScriptEnginePage::compare(RecordSet& stored) {
  if (!loaded_ || !console().host().guards_newer_values()) return Turn::write;
  Loaded newer;
  const bool read = read_rows("scriptcontent", [&] {
    newer = {from_utf16_bytes(stored.bytes("scriptcontent")), upper(stored.text("sposition"))};
  });
  if (!read) return Turn::write;
  const auto is_other = [](const std::string& now, const std::string& before, const std::string& here) {
    return now != before && now != here;
  };
  const bool other_source = is_other(newer.source, loaded_->source, scriptsource.text());
  const bool other_position = is_other(newer.position, loaded_->position, upper(sposition.text()));
  const bool typed = scriptsource.text() != loaded_->source;
  const bool moved = upper(sposition.text()) != loaded_->position;
  if (other_source && !typed) scriptsource.set_text(newer.source);
  if (other_position && !moved) sposition.set_text(newer.position);
  const bool ask_source = other_source && typed;
  if (!ask_source && !(other_position && moved)) return Turn::write;
  roll_back();
  const Answer answer = ask_source ? ask_about_newer(current_script_, newer.source)
                                   : ask_about_newer(label_of(sposition), newer.position);
  if (answer == Answer::cancel) {
    failed(Kind::sql, "not stored: " + current_script_, "somebody else has stored another script meanwhile",
           Step::write);
    return Turn::not_decided;
  }
  if (answer == Answer::keep_theirs) {
    if (other_source) scriptsource.set_text(newer.source);
    if (other_position) sposition.set_text(newer.position);
  }
  loaded_ = std::move(newer);
  return Turn::again;
}

void ScriptEnginePage::remove() {
  const MessageBox question{translate("Delete Script"), translate("Are you sure?"), BoxStyle::ok_cancel};
  if (console().host().message_box(question) != BoxReply::ok) return;
  execute(delete_from("scriptengine", "scriptname", current_script_));
  say(script_deleted, {current_script_});
  current_script_.clear();
  loaded_.reset();
  scriptsource.set_text("");
  scriptsource.set_marks({});
  sposition.set_text("");
  fill_script_list();
}

void ScriptEnginePage::run_script() {
  save();
  if (scriptsource.text().empty() || !runner_) return;
  runner_->loaddb();
  const vbs::ScriptValue result = runner_->call_vbs(current_script_, test_input());
  outputlabel.set_caption(translate("The result of your script is: ") + result.text + echoed_text());
  mark_problems();
}

void ScriptEnginePage::run_position() {
  save();
  if (!runner_) return;
  runner_->load_into_engine(conn, upper(sposition.text()));
  const std::int32_t sum = runner_->call_all(test_input(), sposition.text());
  Label4.set_caption(translate("The result of your scripts are: ") + std::to_string(sum) + echoed_text());
  mark_problems();
}

// What the scripts printed, each line below the result.
std::string ScriptEnginePage::echoed_text() const {
  std::string text;
  for (const std::string& line : runner_->echoed()) text += "\n" + line;
  return text;
}

void ScriptEnginePage::update_database() {
  const auto downloader = component<Downloader>();
  if (downloader) component_step("update_db", [&] { downloader->update_db(); });
  if (downloader) {
    say(scripts_taken);
  } else {
    say_failed(scripts_taken.failed);
  }
  fill_script_list();
}

// Mail comes with both characters at each line's end; what people type has the second alone.
std::string ScriptEnginePage::test_input() const {
  std::string result;
  for (const char c : inputbox.text()) {
    if (c == '\n' && !result.ends_with('\r')) result += '\r';
    result += c;
  }
  return result;
}

void ScriptEnginePage::mark_problems() {
  std::vector<TextField::Mark> marks;
  if (runner_) {
    for (const ScriptRunner::Problem& problem : runner_->problems()) {
      marks.push_back(
          {problem.script, problem.line, problem.column, problem.text, problem.script != current_script_});
    }
  }
  scriptsource.set_marks(std::move(marks));
}

}  // namespace zrl
