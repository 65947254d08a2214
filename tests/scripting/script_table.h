#pragma once

#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "core/text/utf16.h"

namespace zrl::test {

// What a test needs of the table `scriptengine`, beside an installed console or a page that is shown.
template <typename Installed>
class ScriptTable : public Installed {
 public:
  ScriptTable() {
    database_ = this->console.components().template create<Database>();
    conn = database_->open_database("sqlite:proxy.db");
  }

  // A connection like the page's.
  ConnectionHandle conn;

  void create_table() {
    database_->CreateTable(
        conn, "scriptengine",
        "scriptname nvarchar (255) NOT NULL Primary Key, scriptcontent image NULL, sposition "
        "nvarchar(255) null, prio int default 0, svisible int default 0");
  }

  void put(std::string_view name, std::string_view position, int priority, int visible,
           std::string_view source) {
    conn->execute(insert_into("scriptengine", "scriptname", name));
    const auto row = row_of(name);
    row->set_bytes("scriptcontent", to_utf16_bytes(source));
    row->set_text("sposition", position);
    row->set_number("prio", priority);
    row->set_number("svisible", visible);
    row->update();
  }

  std::unique_ptr<RecordSet> row_of(std::string_view name) {
    return conn->open("SELECT * FROM scriptengine WHERE scriptname='" + value(name) + "'",
                      Connection::Access::updatable);
  }

  // "POSITION visible: source" as the table holds it.
  std::string stored(std::string_view name) {
    const auto row = row_of(name);
    if (row->at_end()) return "none";
    std::string result(row->text("sposition"));
    return result + " " + std::to_string(row->number("svisible")) + ": " +
           from_utf16_bytes(row->bytes("scriptcontent"));
  }

  std::vector<std::string> lines_of(const std::filesystem::path& file) const {
    std::ifstream in(this->folder.path() / file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
  }

 private:
  std::shared_ptr<Database> database_;
};

// A function that returns this expression.
inline std::string returning(std::string_view name, std::string_view expression) {
  std::string text = "Function " + std::string(name) + "(input)\r\n";
  return text.append(name).append(" = ").append(expression).append("\r\nEnd Function\r\n");
}

}  // namespace zrl::test
