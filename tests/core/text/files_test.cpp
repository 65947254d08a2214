#include "core/text/files.h"

#include <chrono>
#include <fstream>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/text/error.h"
#include "core/text/paths.h"
#include "support/temporary_folder.h"

namespace zrl {
namespace {

TEST(Paths, BothSeparatorsCount) {
  EXPECT_EQ(to_file_path("\\tmp\\lists/a.txt"), "/tmp/lists/a.txt");
  EXPECT_EQ(to_product_path("/tmp/a"), "\\tmp\\a");
}

TEST(Files, ReplacingAFileIsAllOrNothing) {
  test::TemporaryFolder folder;
  const auto path = folder.path() / "a.txt";
  replace_file(path, "first");
  replace_file(path, "second");
  EXPECT_EQ(read_file(path), "second");
  EXPECT_THROW(replace_file(folder.path() / "none" / "a.txt", "x"), Error);
  std::filesystem::create_directory(folder.path() / "taken");
  EXPECT_THROW(replace_file(folder.path() / "taken", "x"), Error);
  std::size_t files = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder.path())) ++files;
  EXPECT_EQ(files, 2u);  // no temporary file is left behind
}

TEST(Files, ReadingIsBounded) {
  test::TemporaryFolder folder;
  std::ofstream(folder.path() / "big") << std::string(200'000, 'x');
  EXPECT_THROW(read_file(folder.path() / "big", 100'000), Error);
  EXPECT_EQ(read_file(folder.path() / "big", 200'000).size(), 200'000u);
  EXPECT_THROW(read_file(folder.path() / "none"), Error);
}

TEST(Files, ANewFileShowsUpWhenItIsComplete) {
  test::TemporaryFolder folder;
  const auto path = folder.path() / std::string(250, 'n');  // as long as names nearly get
  const auto names = [&] {
    return std::distance(std::filesystem::directory_iterator(folder.path()),
                         std::filesystem::directory_iterator());
  };
  {
    NewFile dropped(path);
    dropped.write("x");
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(names(), 1);
  }
  EXPECT_EQ(names(), 0);
  NewFile first(path, 0600);
  NewFile second(path);  // at the same time
  NewFile third(path);
  first.write("first");
  second.write("second");
  EXPECT_TRUE(first.publish());
  struct stat status = {};
  ASSERT_EQ(::stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600U);
  EXPECT_FALSE(third.publish(NewFile::IfTaken::keep));
  EXPECT_EQ(read_file(path), "first");
  EXPECT_TRUE(second.publish());
  EXPECT_EQ(read_file(path), "second");
}

TEST(Files, LeftoversAreRemovedByAge) {
  test::TemporaryFolder folder;
  std::filesystem::create_directory(folder.path() / ".new-folder");
  for (const char* name : {".new-1", ".new-2", "list.new-3"}) {
    std::ofstream(folder.path() / name) << "half";
    if (std::string_view(name) == ".new-2") continue;
    std::filesystem::last_write_time(folder.path() / name,
                                     std::filesystem::file_time_type::clock::now() - std::chrono::hours(48));
  }
  NewFile::remove_leftovers(folder.path());
  EXPECT_FALSE(std::filesystem::exists(folder.path() / ".new-1"));
  EXPECT_TRUE(std::filesystem::exists(folder.path() / ".new-2"));
  EXPECT_TRUE(std::filesystem::exists(folder.path() / "list.new-3"));
  NewFile::remove_leftovers(folder.path() / "none");
}

TEST(Files, ErrorsNameTheFileAndTellWhy) {
  try {
    read_file("/nowhere/a.txt");
    FAIL();
  } catch (const Error& failure) {
    EXPECT_EQ(failure.number(), ENOENT);
    EXPECT_STREQ(failure.what(), "/nowhere/a.txt: No such file or directory");
  }
}

}  // namespace
}  // namespace zrl
