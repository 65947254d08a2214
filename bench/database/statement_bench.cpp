#include "core/database_client.h"
#include "database/comparison.h"
#include "support/recording_host.h"

// One action that runs a hundred thousand statements, recorded and made durable at its end,
// against prepared statements in a loop, each committed by itself.
namespace zrl::bench {

namespace {

constexpr unsigned pairs = 50000;

class Client : public DatabaseClient {
 public:
  explicit Client(Console& console) : DatabaseClient(console) {}
  using DatabaseClient::execute;
};

void make_empty(const std::string& name) {
  for (const char* ending : {"", "-wal", "-shm"}) std::filesystem::remove(folder() / (name + ending));
  access_to("")->open_database("sqlite:" + name);
}

const std::vector<std::string>& senders() {
  static const std::vector<std::string> made = host_names(static_cast<int>(pairs), 2);
  return made;
}

double ours() {
  make_empty("ours.db");
  test::RecordingHost host;
  Console console(folder(), host);
  Client client(console);
  client.database = access_to("");
  client.conn = client.database->open_database("sqlite:ours.db");
  senders();
  const double seconds = seconds_of([&] {
    console.begin_action();
    for (const std::string& sender : senders()) {
      client.execute(insert_into("blackmail", "entry", sender));
      client.execute(delete_from("whitemail", "entry", sender));
    }
    console.end_action();
  });
  if (console.activity().failures() != 0 || console.activity().total() != std::uint64_t{2} * pairs)
    std::abort();
  return seconds;
}

double bare() {
  make_empty("bare.db");
  Bare engine(folder() / "bare.db", Bare::Settings::of_the_component);
  sqlite3_stmt* insert = engine.prepare("INSERT INTO blackmail (entry) VALUES (?)");
  sqlite3_stmt* remove = engine.prepare("DELETE FROM whitemail where entry=?");
  senders();
  const double seconds = seconds_of([&] {
    for (const std::string& sender : senders()) {
      for (sqlite3_stmt* statement : {insert, remove}) {
        sqlite3_bind_text(statement, 1, sender.data(), static_cast<int>(sender.size()), SQLITE_STATIC);
        if (sqlite3_step(statement) != SQLITE_DONE) std::abort();
        sqlite3_reset(statement);
      }
    }
  });
  sqlite3_finalize(insert);
  sqlite3_finalize(remove);
  return seconds;
}

}  // namespace

void add_statements(Suite& suite) {
  suite.add(Comparison{"action of 100,000 statements; bare: our settings", 1.3, ours, bare});
}

}  // namespace zrl::bench
