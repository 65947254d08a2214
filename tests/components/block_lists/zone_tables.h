#pragma once

#include <map>
#include <string>
#include <vector>

#include "components/block_lists/block_lists.h"
#include "components/sqlite/sqlite.h"
#include "components/sqlite/sqlite_engine.h"
#include "support/dns_server.h"
#include "support/fake_services.h"
#include "support/temporary_folder.h"

namespace zrl::test {

// A console with tables of zones, and a DNS server that knows what they list.
struct ZoneTables {
  ZoneTables() {
    console.lookup.told_servers = {"127.0.0.1:" + std::to_string(server.port())};
    console.components().add<Database>([this] {
      auto database = sqlite::make(console);
      database->open_database(console.data_provider());
      write_tables();
      return database;
    });
  }

  FakeDnsServer server;
  TemporaryFolder folder;
  FakeServices console{folder.path()};
  std::vector<std::string>& servers = console.lookup.told_servers;
  std::chrono::milliseconds& timeout = console.lookup.told_time_out;
  std::map<std::string, std::vector<std::string>> tables;  // as they are when a check begins
  std::vector<std::string>& reports = console.failures;    // "block list ZONE: PROBLEM"

 private:
  // Texts of any bytes, which no statement takes.
  void write_tables() {
    sqlite::Engine file(folder.path() / "zrl.db", {});
    sqlite::Atomic atomic(file);
    for (const std::string table : {"wblserver", "rblserver", "surblserver"}) {
      file.run(("DELETE FROM " + table).c_str());
      sqlite::Query insert(file, "INSERT INTO " + table + " (entry) VALUES (?1)");
      for (const std::string& zone : tables[table]) insert.bind(1, zone).run();
    }
    atomic.commit();
  }
};

}  // namespace zrl::test
