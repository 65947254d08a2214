#pragma once

#include "core/contracts/console_services.h"
#include "core/contracts/database.h"

namespace zrl::checks {

// The lists and switches of the console's database, read over a connection of its own. All operations,
// the constructor included, raise zrl::Error if they cannot be read.
class KeywordLists {
 public:
  explicit KeywordLists(ConsoleServices& console)
      : database_(console.components().create<Database>()),
        conn_(database_->open_database(console.data_provider())) {}

  StringList entries(Literal table) {
    StringList result = database_->get_db_array(conn_, table, "entry", Statement("entry<>''"));
    if (!result.empty()) result.pop_back();  // the element beyond the rows
    return result;
  }

  // 0 if there is no such option.
  int number(std::string_view option) { return database_->read_option(option, conn_).to_int16(); }

 private:
  std::shared_ptr<Database> database_;
  ConnectionHandle conn_;
};

}  // namespace zrl::checks
