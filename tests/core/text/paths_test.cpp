#include "core/text/paths.h"

#include <fstream>

#include <gtest/gtest.h>

#include "core/text/error.h"
#include "support/temporary_folder.h"

namespace zrl {
namespace {

TEST(Paths, BothSeparatorsCount) {
  EXPECT_EQ(to_file_path("\\tmp\\lists/a.txt"), "/tmp/lists/a.txt");
  EXPECT_EQ(to_product_path("/tmp/a"), "\\tmp\\a");
}

TEST(Paths, ReplacingAFileIsAllOrNothing) {
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

TEST(Paths, ReadingIsBounded) {
  test::TemporaryFolder folder;
  std::ofstream(folder.path() / "big") << std::string(200'000, 'x');
  EXPECT_THROW(read_file(folder.path() / "big", 100'000), Error);
  EXPECT_EQ(read_file(folder.path() / "big", 200'000).size(), 200'000u);
  EXPECT_THROW(read_file(folder.path() / "none"), Error);
}

}  // namespace
}  // namespace zrl
