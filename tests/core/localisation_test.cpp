#include "core/localisation.h"

#include <fstream>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "core/console.h"
#include "support/fake_components.h"
#include "support/recording_host.h"
#include "support/temporary_folder.h"

namespace zrl {
namespace {

class LocalisationTest : public testing::Test {
 protected:
  LocalisationTest() {
    test::add_registry(console.components(), store);
    test::add_translator(console.components(), log);
  }

  void set_language(const std::string& language) {
    store.values["hklm\\software\\mirvan\\language"] = language;
  }

  test::TemporaryFolder folder;
  test::RecordingHost host;
  test::MemoryRegistry::Store store;
  test::ShoutingTranslator::Log log;
  Console console{folder.path(), host};
  Localisation& localisation = console.localisation();
};

TEST_F(LocalisationTest, EnglishIsNeverSentButTheComponentIsAsked) {
  for (const char* language : {"", "english", "ENGLISH"}) {
    set_language(language);
    EXPECT_EQ(localisation.translate("Welcome"), "Welcome");
  }
  EXPECT_EQ(log.created, 1);
  EXPECT_EQ(log.asked, 3);
  EXPECT_TRUE(log.translated.empty());
}

TEST_F(LocalisationTest, TheLanguageIsKeptOnceItWasFound) {
  set_language("German");
  EXPECT_EQ(localisation.translate("Welcome"), "WELCOME");
  set_language("english");
  EXPECT_EQ(localisation.current_language(), "german");
  EXPECT_EQ(localisation.translate("Welcome"), "WELCOME");
}

// Accounts that share the folder may make the file, and the sign-in page tells strangers the language.
TEST_F(LocalisationTest, AFileThatHoldsNoNameIsPassedOver) {
  set_language("german");
  const auto file = folder.path() / "language";
  std::ofstream(folder.path() / "secret") << R"({"password":"$argon2id$x"})";
  std::filesystem::create_symlink("secret", file);
  EXPECT_EQ(localisation.current_language(), "german");
  std::filesystem::remove(file);
  ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
  Console other(folder.path(), host);
  test::add_registry(other.components(), store);
  EXPECT_EQ(other.localisation().current_language(), "german");  // without waiting for a writer
}

TEST_F(LocalisationTest, TheTranslatorsDefaultComesBeforeTheFileBeforeTheRegistry) {
  set_language("german");
  EXPECT_EQ(Console(folder.path(), host).localisation().current_language(), "");
  std::ofstream(folder.path() / "language") << "  Dutch\r\n";
  EXPECT_EQ(localisation.current_language(), "dutch");

  Console other(folder.path(), host);
  log.default_of_new_instances = "polish";
  test::add_translator(other.components(), log);
  other.localisation().create_translator();
  EXPECT_EQ(other.localisation().current_language(), "polish");
}

TEST_F(LocalisationTest, AReleasedTranslatorIsCreatedAgain) {
  set_language("german");
  localisation.translate("a");
  localisation.translate("b");
  EXPECT_EQ(log.created, 1);
  localisation.release_translator();
  EXPECT_EQ(localisation.translate("c"), "C");
  EXPECT_EQ(log.created, 2);
}

TEST_F(LocalisationTest, AnInstanceThatDoesNotAnswerIsReplacedOnce) {
  set_language("german");
  log.failures_of_info = 1;
  EXPECT_EQ(localisation.translate("a"), "A");
  EXPECT_EQ(log.created, 2);
  log.failures_of_info = 2;
  EXPECT_EQ(localisation.translate("b"), "b");
}

TEST_F(LocalisationTest, AMissingComponentLeavesTextsAsTheyAre) {
  set_language("german");
  console.components().remove(Translator::program_id);
  EXPECT_EQ(localisation.translate("Welcome"), "Welcome");
}

TEST_F(LocalisationTest, AGivenLanguageBecomesCurrent) {
  EXPECT_EQ(localisation.translate("a", "german"), "A");
  EXPECT_EQ(localisation.current_language(), "german");
}

}  // namespace
}  // namespace zrl
