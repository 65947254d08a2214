#include <fstream>
#include <map>

#include "command_fixture.h"
#include "core/text/files.h"

namespace zrl::command {
namespace {

using testing::HasSubstr;

constexpr const char* flag = "HKLM\\SOFTWARE\\Mirvan\\reloadblack";

TEST_F(CommandTest, InitLaysTheFolderOutAndChangesNothingThatIsThere) {
  EXPECT_EQ(run({"init"}), 0) << err;
  const auto console = folder.path() / "console";
  for (const char* name :
       {"proxy.ini", "registry.db", "proxy.db", "lists", "download", "archive", "scripts"}) {
    EXPECT_TRUE(std::filesystem::exists(console / name)) << name;
  }
  using std::filesystem::perms;
  EXPECT_EQ(std::filesystem::status(console).permissions(),
            perms::owner_all | perms::group_read | perms::group_exec);
  run({"registry", "set", "HKLM\\SOFTWARE\\Mirvan\\dataprovider", "REG_SZ", "sqlite:other.db"});
  std::ofstream(console / "proxy.ini") << "product = Mirvan \n";
  EXPECT_EQ(run({"init"}), 0);
  EXPECT_EQ(read_file(console / "proxy.ini"), "product = Mirvan \n");
  EXPECT_EQ(run({"registry", "get", "HKLM\\SOFTWARE\\Mirvan\\dataprovider"}), 0);
  EXPECT_EQ(out, "sqlite:other.db\n");
}

TEST_F(CommandTest, OpeningTheFolderOfAnotherVersionWritesThisOne) {
  constexpr const char* path = "HKLM\\SOFTWARE\\Mirvan\\ProductVersion";
  run({"init"});
  run({"registry", "get", path});
  const std::string current = out;
  for (const std::vector<std::string>& opening : {std::vector<std::string>{"init"}, {"do", "general"}}) {
    run({"registry", "set", path, "REG_SZ", "0.0.1"});
    EXPECT_EQ(run(opening), 0) << err;
    run({"registry", "get", path});
    EXPECT_EQ(out, current) << opening.front();
  }
  run({"registry", "delete", path});  // no installer was there
  run({"do", "general"});
  EXPECT_EQ(run({"registry", "get", path}), failure);
}

TEST_F(CommandTest, InitTellsWhyItCannot) {
  std::ofstream(folder.path() / "console") << "a file";
  EXPECT_EQ(run({"init"}), failure);
  EXPECT_THAT(err, HasSubstr("console"));
}

TEST_F(CommandTest, RegistryValuesAreWrittenReadAndDeleted) {
  run({"init"});
  EXPECT_EQ(run({"registry", "get", flag}), failure);
  EXPECT_EQ(out, "");
  EXPECT_EQ(run({"registry", "set", flag, "REG_DWORD", "1"}), 0) << err;
  EXPECT_EQ(run({"registry", "get", "hklm\\software\\mirvan\\RELOADBLACK"}), 0);
  EXPECT_EQ(out, "1\n");
  EXPECT_EQ(run({"registry", "delete", flag}), 0);
  EXPECT_EQ(run({"registry", "get", flag}), failure);
  for (const char* value : {"x", "-1", "4294967296", ""}) {
    EXPECT_EQ(run({"registry", "set", flag, "REG_DWORD", value}), usage_error) << value;
  }
  EXPECT_EQ(run({"registry", "set", flag, "REG_BINARY", "1"}), usage_error);
}

TEST_F(CommandTest, PagesAreListed) {
  EXPECT_EQ(run({"pages"}), 0);
  EXPECT_THAT(out, HasSubstr("general\tSettings\tGeneral\n"));
  EXPECT_EQ(run({"pages", "--json"}), 0);
  const boost::json::value listed = boost::json::parse(out);
  std::map<std::string_view, const boost::json::value*> destroys;
  for (const boost::json::value& page : listed.as_array())
    destroys[page.at("name").as_string()] = &page.at("destroys");
  EXPECT_EQ(listed.at(0).at("name"), "overview");
  EXPECT_EQ(*destroys.at("general"), boost::json::array());
  EXPECT_EQ(*destroys.at("pop_config"), boost::json::array{"deletea"});
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "console"));  // looking makes nothing
}

TEST_F(CommandTest, WhatCannotBeMeantIsAUsageError) {
  const std::vector<std::vector<std::string>> wrong = {
      {}, {"nonsense"}, {"do"}, {"do", "nopage"}, {"do", "general", "=x"}, {"registry"}, {"pages", "--nope"}};
  for (const auto& arguments : wrong) {
    EXPECT_EQ(run(arguments), usage_error);
    EXPECT_NE(err, "");
    EXPECT_EQ(out, "");
  }
  EXPECT_EQ(run({"--help"}), 0);
  EXPECT_THAT(out, HasSubstr("zrlconsole init --sample"));
  EXPECT_EQ(run({"--version"}), 0);
}

}  // namespace
}  // namespace zrl::command
