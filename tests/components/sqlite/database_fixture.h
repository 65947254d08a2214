#pragma once

#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include "components/sqlite/sqlite.h"
#include "core/text/error.h"
#include "support/fake_services.h"
#include "support/temporary_folder.h"

namespace zrl::test {

// "number: description" of the error that the action raises, or "none".
template <typename Action>
std::string failure_of(Action action) {
  try {
    action();
  } catch (const Error& error) {
    return std::to_string(error.number()) + ": " + error.what();
  }
  return "none";
}

// Another program at the same file, which uses the engine directly.
class OtherProgram {
 public:
  explicit OtherProgram(const std::filesystem::path& path) {
    if (sqlite3_open(path.c_str(), &handle_) != SQLITE_OK) ADD_FAILURE() << sqlite3_errmsg(handle_);
    sqlite3_busy_timeout(handle_, 5000);
  }
  OtherProgram(const OtherProgram&) = delete;
  OtherProgram& operator=(const OtherProgram&) = delete;
  ~OtherProgram() { sqlite3_close(handle_); }

  void run(const std::string& sql) {
    char* message = nullptr;
    if (sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, &message) != SQLITE_OK) ADD_FAILURE() << message;
    sqlite3_free(message);
  }

  // All values of the result, row by row, joined by "|".
  std::string ask(const std::string& sql) {
    std::string result;
    const auto add = [](void* text, int count, char** values, char**) {
      for (int i = 0; i < count; ++i) {
        static_cast<std::string*>(text)->append(values[i] == nullptr ? "NULL" : values[i]).append("|");
      }
      return 0;
    };
    if (sqlite3_exec(handle_, sql.c_str(), add, &result, nullptr) != SQLITE_OK) {
      ADD_FAILURE() << sqlite3_errmsg(handle_);
    }
    if (!result.empty()) result.pop_back();
    return result;
  }

 private:
  sqlite3* handle_ = nullptr;
};

// Runs the action in a process of its own; true if it returned true there.
inline bool in_child(const std::function<bool()>& action) {
  const pid_t child = ::fork();
  if (child == 0) {
    bool good = false;
    try {
      good = action();
    } catch (const std::exception& error) {
      std::fprintf(stderr, "child: %s\n", error.what());
    }
    ::_exit(good ? 0 : 1);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

class DatabaseTest : public ::testing::Test {
 protected:
  std::filesystem::path path(const std::string& name) const { return folder.path() / name; }

  std::string write_file(const std::string& name, std::string_view content) const {
    std::ofstream(path(name), std::ios::binary) << content;
    return path(name).string();
  }

  // A list file, where list files may be.
  std::filesystem::path list_path(const std::string& name) const { return path("lists") / name; }
  std::string write_list(const std::string& name, std::string_view content) const {
    std::filesystem::create_directory(path("lists"));
    return write_file("lists/" + name, content);
  }

  std::string read_file(const std::string& name) const {
    std::ostringstream content;
    content << std::ifstream(path(name), std::ios::binary).rdbuf();
    return content.str();
  }

  void execute(const Statement& statement) { conn->execute(statement); }
  void execute(Literal statement) { conn->execute(Statement(statement)); }

  std::vector<std::string> list(Literal table, Literal column = "entry", const Statement& condition = {}) {
    StringList array = database->get_db_array(conn, table, column, condition);
    EXPECT_FALSE(array.empty());
    EXPECT_EQ(array[array.size() - 1], "");
    array.pop_back();
    return texts(array);
  }

  std::vector<std::string> ordered(Literal table, Literal column, const Statement& condition, Literal order) {
    return texts(database->get_db_array_ordered(conn, table, column, condition, order));
  }

  static std::vector<std::string> texts(const StringList& list) {
    std::vector<std::string> result;
    for (std::size_t i = 0; i < list.size(); ++i) result.emplace_back(list[i]);
    return result;
  }

  TemporaryFolder folder;
  FakeServices console{folder.path()};
  std::shared_ptr<Database> database = sqlite::make(console, {std::chrono::milliseconds(200)});
  ConnectionHandle conn = database->open_database("sqlite:zrl.db");
  OtherProgram other{folder.path() / "zrl.db"};
};

}  // namespace zrl::test
