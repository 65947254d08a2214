#include "core/contracts/console_folder.h"

#include <fstream>

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace zrl {
namespace {

namespace fs = std::filesystem;

TEST(ConsoleFolder, WhatTheConsoleReliesOnIsItsOwnHoweverItIsNamed) {
  test::TemporaryFolder temporary;
  const fs::path folder = temporary.path() / "console";
  fs::create_directories(folder / "secrets");
  fs::create_directories(folder / "lists");
  std::ofstream(folder / "registry.db") << "x";
  fs::create_symlink(folder / "registry.db", temporary.path() / "innocent.txt");
  fs::create_directory_symlink(folder, temporary.path() / "elsewhere");
  fs::create_symlink("../registry.db", folder / "lists" / "link.txt");

  for (const fs::path& own :
       {folder, folder / "registry.db", folder / "proxy.db-wal", folder / "not-there-yet",
        folder / "secrets" / "a", folder / "scripts" / "a.vbs", folder / "lists" / ".." / "audit.log",
        folder / "lists2" / "a", folder / "lists" / "link.txt", temporary.path() / "innocent.txt",
        temporary.path() / "elsewhere" / "proxy.ini", fs::relative(folder / "proxy.db")}) {
    EXPECT_TRUE(console_folder::is_own(folder, own)) << own;
  }
  for (const fs::path& free :
       {folder / "lists", folder / "lists" / "a.txt", folder / "download" / "addblack.txt",
        folder / "archive" / "a.eml", folder / "upload" / "a.txt",
        temporary.path() / "elsewhere" / "lists" / "new" / "a.txt", temporary.path() / "console.txt",
        temporary.path(), fs::path("/")}) {
    EXPECT_FALSE(console_folder::is_own(folder, free)) << free;
  }
  EXPECT_TRUE(console_folder::is_own(fs::relative(folder), folder / "registry.db"));
}

}  // namespace
}  // namespace zrl
