#include "core/contracts/registry.h"

#include "components/sqlite/database_fixture.h"

namespace zrl::test {
namespace {

using ::testing::HasSubstr;

class RegistryTest : public ::testing::Test {
 protected:
  std::filesystem::path file() const { return folder.path() / "registry.db"; }
  std::string read(std::string_view path) { return registry->regread(path).value_or("(none)"); }

  TemporaryFolder folder;
  FakeServices console{folder.path()};
  std::shared_ptr<Registry> registry = sqlite::make_registry(console, {std::chrono::milliseconds(200)});
};

TEST_F(RegistryTest, KeepsValuesOfBothKinds) {
  registry->write_string("HKLM\\SOFTWARE\\Mirvan\\dataprovider", "sqlite:it's.db");
  registry->write_dword("HKLM\\SOFTWARE\\Mirvan\\reloadblack", 4294967295U);
  registry->write_string("hklm\\software\\mirvan\\007", "007");
  EXPECT_EQ(read("hklm\\software\\MIRVAN\\DataProvider"), "sqlite:it's.db");
  EXPECT_EQ(read("HKLM\\SOFTWARE\\Mirvan\\reloadblack"), "4294967295");
  EXPECT_EQ(read("HKLM\\SOFTWARE\\Mirvan\\007"), "007");
  EXPECT_EQ(read("HKLM\\SOFTWARE\\Mirvan\\reload"), "(none)");

  registry->write_dword("HKLM\\software\\Mirvan\\DATAPROVIDER", 0);
  EXPECT_EQ(read("HKLM\\SOFTWARE\\Mirvan\\dataprovider"), "0");
  registry->write_string("HKLM\\SOFTWARE\\Mirvan\\dataprovider", "");
  EXPECT_EQ(read("HKLM\\SOFTWARE\\Mirvan\\dataprovider"), "");
  OtherProgram proxy(file());
  EXPECT_EQ(proxy.ask("SELECT path, kind, value FROM registry ORDER BY path"),
            "hklm\\software\\mirvan\\007|REG_SZ|007|HKLM\\SOFTWARE\\Mirvan\\dataprovider|REG_SZ||"
            "HKLM\\SOFTWARE\\Mirvan\\reloadblack|REG_DWORD|4294967295");

  registry->delete_value("HKLM\\software\\mirvan\\RELOADBLACK");
  registry->delete_value("HKLM\\software\\mirvan\\never");
  EXPECT_EQ(read("HKLM\\SOFTWARE\\Mirvan\\reloadblack"), "(none)");
  EXPECT_EQ(proxy.ask("SELECT count(*) FROM registry"), "2");
}

TEST_F(RegistryTest, LooksLikeOneTableToOthers) {
  registry->write_dword("HKLM\\SOFTWARE\\Mirvan\\reloadwhite", 1);
  OtherProgram proxy(file());
  EXPECT_EQ(proxy.ask("SELECT path, kind, value, typeof(value) FROM registry"),
            "HKLM\\SOFTWARE\\Mirvan\\reloadwhite|REG_DWORD|1|integer");
  proxy.run("UPDATE registry SET value=0 WHERE path='hklm\\software\\mirvan\\RELOADWHITE'");
  EXPECT_EQ(read("HKLM\\SOFTWARE\\Mirvan\\reloadwhite"), "0");
}

// Whoever writes a value: how long it has been what it is can be told, as flags wait to be read.
TEST_F(RegistryTest, KnowsWhenAValueBecameWhatItIs) {
  registry->write_dword("HKLM\\SOFTWARE\\Mirvan\\reloadwhite", 1);
  const auto first = registry->changed_at("hklm\\software\\mirvan\\reloadwhite");
  ASSERT_TRUE(first.has_value());
  EXPECT_NEAR(static_cast<double>(*first), static_cast<double>(std::time(nullptr)), 60);
  OtherProgram proxy(file());
  proxy.run("UPDATE registry_times SET changed=1000");
  registry->write_dword("HKLM\\SOFTWARE\\Mirvan\\reloadwhite", 1);
  EXPECT_EQ(registry->changed_at("HKLM\\SOFTWARE\\Mirvan\\reloadwhite"), 1000);
  proxy.run("UPDATE registry SET value=0");
  EXPECT_GT(registry->changed_at("HKLM\\SOFTWARE\\Mirvan\\reloadwhite").value_or(0), 1000);
  EXPECT_EQ(registry->changed_at("HKLM\\SOFTWARE\\Mirvan\\never"), std::nullopt);
  // A file of an older console knows nothing until it is next written.
  proxy.run("DROP TRIGGER registry_added; DROP TRIGGER registry_changed; DROP TABLE registry_times");
  EXPECT_EQ(registry->changed_at("HKLM\\SOFTWARE\\Mirvan\\reloadwhite"), std::nullopt);
  registry = sqlite::make_registry(console, {std::chrono::milliseconds(200)});
  registry->write_dword("HKLM\\SOFTWARE\\Mirvan\\reloadwhite", 1);
  EXPECT_GT(registry->changed_at("HKLM\\SOFTWARE\\Mirvan\\reloadwhite").value_or(0), 1000);
}

TEST_F(RegistryTest, ReadingMakesNoFile) {
  EXPECT_EQ(read("HKLM\\SOFTWARE\\Mirvan\\debug"), "(none)");
  registry->delete_value("HKLM\\SOFTWARE\\Mirvan\\debug");
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
  std::ofstream{file()};  // an empty file, as a crash may leave it
  EXPECT_EQ(read("HKLM\\SOFTWARE\\Mirvan\\debug"), "(none)");
  registry->write_dword("HKLM\\SOFTWARE\\Mirvan\\debug", 1);
  EXPECT_EQ(read("HKLM\\SOFTWARE\\Mirvan\\debug"), "1");
}

TEST_F(RegistryTest, FollowsItsFile) {
  TemporaryFolder backup;
  FakeServices elsewhere(backup.path());
  sqlite::make_registry(elsewhere)->write_string("a", "restored");
  registry->write_string("a", "first");
  std::filesystem::rename(backup.path() / "registry.db", file());
  for (const char* ending : {"-wal", "-shm"}) std::filesystem::remove(file().string() + ending);
  EXPECT_EQ(read("a"), "restored");
  for (const char* ending : {"", "-wal", "-shm"}) std::filesystem::remove(file().string() + ending);
  EXPECT_EQ(read("a"), "(none)");
  registry->write_string("a", "again");
  EXPECT_EQ(read("a"), "again");
}

TEST_F(RegistryTest, Failures) {
  std::ofstream(file()) << std::string(5000, 'x');
  EXPECT_THAT(failure_of([&] { read("a"); }), HasSubstr("registry.db"));
  EXPECT_THAT(failure_of([&] { registry->write_string("a", "b"); }), HasSubstr("not a database"));
  std::filesystem::remove(file());
  registry->write_string("a", "b");
  OtherProgram writer(file());
  writer.run("BEGIN IMMEDIATE");
  EXPECT_THAT(failure_of([&] { registry->write_string("a", "c"); }), HasSubstr("locked"));
  EXPECT_EQ(read("a"), "b");
  writer.run("ROLLBACK");
  registry->write_string("a", "c");
  EXPECT_EQ(read("a"), "c");
  FakeServices elsewhere(folder.path() / "none");
  const auto nowhere = sqlite::make_registry(elsewhere);
  EXPECT_FALSE(nowhere->regread("a"));
  EXPECT_NE(failure_of([&] { nowhere->write_string("a", "b"); }), "none");
}

TEST_F(RegistryTest, ServesSeveralProcessesAtOnce) {
  constexpr int processes = 4;
  constexpr int rounds = 50;
  std::vector<pid_t> children;
  for (int i = 0; i < processes; ++i) {
    const pid_t child = ::fork();
    if (child == 0) {
      const auto own = sqlite::make_registry(console);
      const std::string mine = "HKLM\\own" + std::to_string(i);
      bool good = true;
      for (int n = 0; n < rounds; ++n) {
        good = good && failure_of([&] {
                         own->write_dword(mine, static_cast<std::uint32_t>(n));
                         own->write_string("HKLM\\common", std::to_string(i));
                       }) == "none";
        good = good && own->regread(mine) == std::to_string(n);
      }
      ::_exit(good ? 0 : 1);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  }
  EXPECT_EQ(OtherProgram(file()).ask("SELECT count(*) FROM registry"), std::to_string(processes + 1));
}

}  // namespace
}  // namespace zrl::test
