#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/console.h"
#include "core/contracts/database.h"
#include "host/composition.h"
#include "host/folder.h"
#include "support/recording_host.h"
#include "support/temporary_folder.h"

namespace zrl::test {

// A console in a folder that was laid out, with all components of the build, and a second
// connection to its database, as the proxy has one.
class InstalledConsole {
 public:
  InstalledConsole() {
    register_components(console);
    lay_out_folder(console);
    forget_activity();
    proxy_ = console.components().create<Database>();
    conn_ = proxy_->open_database("sqlite:proxy.db");
  }

  TemporaryFolder folder;
  RecordingHost host;
  Console console{folder.path(), host};

  // What the proxy reads and writes.
  std::string option(std::string_view key) { return proxy_->read_option(key, conn_).text; }
  std::string text_option(std::string_view key) { return proxy_->read_string(key, conn_); }
  void set_option(std::string_view key, int value) { proxy_->set_option(key, value, conn_); }
  void set_string(std::string_view key, std::string_view text) { proxy_->set_string(key, text, conn_); }
  void execute(const Statement& statement) { conn_->execute(statement); }
  void execute(Literal statement) { conn_->execute(Statement(statement)); }
  std::vector<std::string> rows(Literal table, Literal column) {
    const StringList array = proxy_->get_db_array(conn_, table, column, {});
    std::vector<std::string> result;
    for (std::size_t i = 0; i + 1 < array.size(); ++i) result.emplace_back(array[i]);
    return result;
  }

  std::string registry(std::string_view name) {
    return console.settings().regread(console.settings().path_of(name));
  }

  // The texts of the record's entries, failed ones led by "failed: ".
  std::vector<std::string> activity() {
    std::vector<std::string> texts;
    const ActivityRecord& record = console.activity();
    for (std::uint64_t i = record.first(); i < record.total(); ++i) {
      texts.push_back((record[i].ok ? "" : "failed: ") + std::string(record[i].text));
    }
    return texts;
  }
  void forget_activity() { console.activity() = ActivityRecord(); }

 private:
  std::shared_ptr<Database> proxy_;
  ConnectionHandle conn_;
};

}  // namespace zrl::test
