#include "host/secrets_folder.h"

#include <fstream>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/text/files.h"
#include "support/temporary_folder.h"

// What other accounts do to the folder is tried by tests/packaging/takeover_test.
namespace zrl::test {

namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class SecretsFolder : public ::testing::Test {
 protected:
  void SetUp() override { fs::create_directory(folder_); }

  static unsigned mode_of(const fs::path& path) {
    return static_cast<unsigned>(fs::symlink_status(path).permissions()) & 07777;
  }
  void make(const fs::path& path, std::string_view content, unsigned mode) {
    std::ofstream(path) << content;
    fs::permissions(path, fs::perms(mode));
  }
  std::string refusal() {
    try {
      secure_folder(folder_);
    } catch (const std::runtime_error& refused) {
      return refused.what();
    }
    return {};
  }

  TemporaryFolder temporary_;
  fs::path folder_ = temporary_.path() / "console";
  fs::path secrets_ = folder_ / "secrets";
};

TEST_F(SecretsFolder, AFolderThatWasMadeOpenIsTightened) {
  struct Case {
    unsigned before, after;
  };
  for (const Case& tried :
       {Case{0755, 0750}, Case{0777, 01770}, Case{02775, 03770}, Case{0700, 0700}, Case{03770, 03770}}) {
    fs::permissions(folder_, fs::perms(tried.before));
    EXPECT_THAT(secure_folder(folder_), IsEmpty());
    EXPECT_EQ(mode_of(folder_), tried.after) << std::oct << tried.before;
    EXPECT_EQ(mode_of(secrets_) & 0777, 0700u);
  }
}

TEST_F(SecretsFolder, WhatLayBesideItIsMovedOverHoweverOftenThatIsInterrupted) {
  make(folder_ / "accounts.json", "accounts", 0600);
  fs::create_directory(secrets_);
  fs::permissions(secrets_, fs::perms(0700));
  // The start before was interrupted between the two files.
  make(secrets_ / "audit.log", "audit", 0600);
  EXPECT_THAT(secure_folder(folder_), IsEmpty());
  EXPECT_EQ(read_file(secrets_ / "accounts.json"), "accounts");
  EXPECT_EQ(read_file(secrets_ / "audit.log"), "audit");
  EXPECT_FALSE(fs::exists(folder_ / "accounts.json"));
  EXPECT_THAT(secure_folder(folder_), IsEmpty());
  // What is there already stays.
  make(folder_ / "accounts.json", "others", 0600);
  EXPECT_THAT(secure_folder(folder_), ElementsAre(HasSubstr("accounts.json is not used")));
  EXPECT_EQ(read_file(secrets_ / "accounts.json"), "accounts");
}

TEST_F(SecretsFolder, WhatSomebodyElseMayHavePutThereIsNotMoved) {
  make(temporary_.path() / "elsewhere", "others", 0600);
  const fs::path accounts = folder_ / "accounts.json";
  fs::create_symlink(temporary_.path() / "elsewhere", accounts);
  EXPECT_THAT(secure_folder(folder_), ElementsAre(HasSubstr("is not used")));
  fs::remove(accounts);
  fs::create_hard_link(temporary_.path() / "elsewhere", accounts);
  EXPECT_THAT(secure_folder(folder_), ElementsAre(HasSubstr("is not used")));
  fs::remove(accounts);
  make(accounts, "others", 0660);
  EXPECT_THAT(secure_folder(folder_), ElementsAre(HasSubstr("chmod 0600")));
  if (::geteuid() == 0) {
    fs::permissions(accounts, fs::perms(0600));
    ASSERT_EQ(::chown(accounts.c_str(), 12345, 12345), 0);
    EXPECT_THAT(secure_folder(folder_), ElementsAre(HasSubstr("somebody else")));
  }
  EXPECT_FALSE(fs::exists(secrets_ / "accounts.json"));
}

TEST_F(SecretsFolder, SecretsThatMayNotBeOursAreRefused) {
  fs::create_directory(temporary_.path() / "elsewhere");
  fs::create_directory_symlink(temporary_.path() / "elsewhere", secrets_);
  EXPECT_THAT(refusal(), HasSubstr("is no folder"));
  fs::remove(secrets_);
  make(secrets_, "", 0600);
  EXPECT_THAT(refusal(), HasSubstr("is no folder"));
  fs::remove(secrets_);
  fs::create_directory(secrets_);
  fs::permissions(secrets_, fs::perms(0750));
  EXPECT_THAT(refusal(), HasSubstr("is open to others (mode 0750)"));
  if (::geteuid() != 0) return;
  fs::permissions(secrets_, fs::perms(0700));
  ASSERT_EQ(::chown(secrets_.c_str(), 12345, 12345), 0);
  EXPECT_THAT(refusal(), HasSubstr("belongs to the account number 12345"));
  ASSERT_EQ(::chown(secrets_.c_str(), 0, 0), 0);
  ASSERT_EQ(::chown(folder_.c_str(), 12345, 12345), 0);
  EXPECT_THAT(refusal(), HasSubstr("who could replace the console's accounts"));
}

}  // namespace

}  // namespace zrl::test
