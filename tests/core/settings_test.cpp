#include "core/settings.h"

#include <fstream>

#include <gtest/gtest.h>

#include "core/console.h"
#include "support/fake_components.h"
#include "support/recording_host.h"
#include "support/temporary_folder.h"

namespace zrl {
namespace {

class SettingsTest : public testing::Test {
 protected:
  SettingsTest() { test::add_registry(console.components(), store); }

  void write_ini(const std::string& text) { std::ofstream(folder.path() / "proxy.ini") << text; }

  test::TemporaryFolder folder;
  test::RecordingHost host;
  test::MemoryRegistry::Store store;
  Console console{folder.path(), host};
  Settings& settings = console.settings();
};

TEST(ProductKey, IsWhatStandsBehindTheLastEqualsSign) {
  const struct {
    const char* text;
    const char* key;
  } cases[] = {
      {"name = Acme Mail", "AcmeMail"},
      {"a=b=c", "c"},
      {"Acme\r\nMail", "AcmeMail"},
      {"product=Acme\r\n", "Acme"},
      {" product = \r\n Acme \r\n", "Acme"},
      {"first=One\r\nsecond=Two\r\n", "Two"},
      {"", "Mirvan"},
      {"product =  \r\n", "Mirvan"},
      {"\t\r\n", "Mirvan"},
  };
  for (const auto& [text, key] : cases) EXPECT_EQ(product_key_in(text), key) << text;
}

TEST_F(SettingsTest, PathsLieUnderTheProductKeyOfTheIniFile) {
  write_ini("name = Acme Mail");
  EXPECT_EQ(settings.data_provider_path(), "HKLM\\SOFTWARE\\AcmeMail\\dataprovider");
  write_ini("other");  // the key is read once
  EXPECT_EQ(settings.product_key(), "AcmeMail");
}

TEST_F(SettingsTest, AMissingIniFileIsNoFailedStep) {
  EXPECT_EQ(settings.product_key(), "Mirvan");
  EXPECT_EQ(console.activity().total(), 0u);
}

TEST_F(SettingsTest, AnUnreadableIniFileIsRecordedAndMeansTheDefault) {
  std::filesystem::create_directory(folder.path() / "proxy.ini");
  EXPECT_EQ(settings.product_key(), "Mirvan");
  EXPECT_EQ(console.activity().failures(), 1u);
}

TEST_F(SettingsTest, WritesAreRecordedAndKeepTheirKind) {
  EXPECT_TRUE(settings.regwrite_dword(settings.path_of("reloadblack"), 1));
  EXPECT_TRUE(settings.regwrite_string(settings.language_path(), "german"));
  EXPECT_EQ(store.writes, (std::vector<std::string>{"REG_DWORD HKLM\\SOFTWARE\\Mirvan\\reloadblack=1",
                                                    "REG_SZ HKLM\\SOFTWARE\\Mirvan\\language=german"}));
  EXPECT_EQ(settings.regread("hklm\\software\\MIRVAN\\Language"), "german");
  settings.delete_value(settings.language_path());
  EXPECT_EQ(settings.regread(settings.language_path()), "");
  ASSERT_EQ(console.activity().total(), 3u);
  EXPECT_EQ(console.activity()[0].text, "HKLM\\SOFTWARE\\Mirvan\\reloadblack=1");
  EXPECT_EQ(console.activity()[2].text, "delete HKLM\\SOFTWARE\\Mirvan\\language");
}

TEST_F(SettingsTest, FailuresAreSwallowedAndRecorded) {
  store.broken = true;
  EXPECT_EQ(settings.regread(settings.debug_path()), "");
  EXPECT_FALSE(settings.regwrite_dword(settings.debug_path(), 1));
  console.components().remove(Registry::program_id);
  EXPECT_FALSE(settings.delete_value(settings.debug_path()));
  EXPECT_EQ(console.activity().failures(), 3u);
  EXPECT_EQ(console.activity()[0].error, "Permission denied");
}

TEST_F(SettingsTest, EveryOperationUsesAnInstanceOfItsOwn) {
  settings.regread(settings.debug_path());
  settings.regwrite_dword(settings.debug_path(), 1);
  EXPECT_EQ(store.instances, 2);
}

}  // namespace
}  // namespace zrl
