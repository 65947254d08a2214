#include <array>
#include <chrono>
#include <fstream>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/text/error.h"
#include "core/text/files.h"
#include "core/text/paths.h"
#include "host/web/handler_page.h"
#include "host/web/offered_files.h"
#include "host/web/session_driver.h"
#include "host/web/uploads.h"
#include "support/temporary_folder.h"

// Files that come from the browser and go to it.
namespace zrl::test {

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::string read_all(web::BodySource& source) {
  std::string content;
  std::array<char, 7> piece{};
  while (const std::size_t size = source.read(piece.data(), piece.size())) content.append(piece.data(), size);
  return content;
}

std::string error_of(const web::Response& response) {
  return std::string(json::parse(response.body).at("error").as_string());
}

TEST(OfferedFiles, OnlyWhatWasOfferedIsServedAsItIsNow) {
  const TemporaryFolder folder;
  const fs::path file = folder.path() / "a.txt";
  std::ofstream(file) << "before";
  web::OfferedFiles files;
  const web::Offer offer = files.add(file).value();
  EXPECT_EQ(offer.name, "a.txt");
  EXPECT_EQ(offer.size, 6u);
  EXPECT_EQ(offer.token.size(), 64u);
  EXPECT_EQ(files.unfetched().size(), 1u);
  std::ofstream(file) << "afterwards";
  EXPECT_EQ(files.add(file)->token, offer.token);
  EXPECT_FALSE(files.fetch("a.txt"));
  EXPECT_FALSE(files.fetch(""));
  const web::Response response = web::file_response(files.fetch(offer.token).value());
  EXPECT_EQ(response.source->size(), 10u);
  EXPECT_EQ(read_all(*response.source), "afterwards");
  EXPECT_THAT(files.unfetched(), IsEmpty());
  EXPECT_TRUE(files.fetch(offer.token));  // once more, if the first time failed

  fs::remove(file);
  EXPECT_EQ(web::file_response(file).status, 404);
  fs::create_symlink("/etc/passwd", file);
  EXPECT_EQ(web::file_response(file).status, 404);
  EXPECT_FALSE(files.add(file));
  EXPECT_FALSE(files.add(folder.path()));
  EXPECT_EQ(web::file_response(folder.path()).status, 404);
}

TEST(OfferedFiles, NamesAreSafeInAHeader) {
  const std::pair<std::string, std::string> cases[] = {
      {"list.txt", R"(attachment; filename="list.txt"; filename*=UTF-8''list.txt)"},
      {"h\u00f6sts (1).txt",
       R"(attachment; filename="h_sts _1_.txt"; filename*=UTF-8''h%C3%B6sts%20%281%29.txt)"},
      {"a\"b\\\r\nX: 1;%41",
       R"(attachment; filename="a_b___X_ 1__41"; filename*=UTF-8''a%22b%5C%0D%0AX%3A%201%3B%2541)"},
      {"\xff", R"(attachment; filename="_"; filename*=UTF-8''%EF%BF%BD)"},
  };
  for (const auto& [name, header] : cases) EXPECT_EQ(web::attachment_header(name), header);
}

TEST(OfferedFiles, WhatExistsForItsOfferAloneIsGoneWithTheOffer) {
  const TemporaryFolder console;
  const web::UploadFolder folder(console.path());
  web::OfferedFiles files;
  const auto offer = [&] {
    auto place = folder.leave("..\\lists\\hosts.txt");
    EXPECT_EQ(place->path().filename(), "hosts.txt");
    std::ofstream(place->path()) << "content";
    const fs::path path = place->path();
    return std::pair(path, files.add(path, std::move(place)).value());
  };
  const auto [first, offered] = offer();
  for (std::size_t more = 1; more < web::OfferedFiles::most_kept; ++more) offer();
  EXPECT_TRUE(fs::exists(first));
  EXPECT_TRUE(files.fetch(offered.token));
  const auto [last, ignored] = offer();
  EXPECT_FALSE(fs::exists(first.parent_path()));
  EXPECT_FALSE(files.fetch(offered.token));
  EXPECT_TRUE(fs::exists(last));

  // What a host that was ended left behind goes with the next sweep, a day later.
  const fs::path left = last.parent_path();
  fs::last_write_time(left, fs::file_time_type::clock::now() - 30h);
  EXPECT_TRUE(folder.sweep());
  EXPECT_FALSE(fs::exists(left));
}

TEST(Uploads, NamesAreCleaned) {
  const std::pair<std::string, std::string> cases[] = {
      {"hosts.txt", "hosts.txt"},
      {"../../etc/passwd", "passwd"},
      {"C:\\Users\\x\\list.txt", "list.txt"},
      {".bashrc", "bashrc"},
      {" .. x . ", "x"},
      {"..", "upload"},
      {"", "upload"},
      {"/", "upload"},
      {std::string("a\0b\n\x7f\u0085\u202e.txt", 14), "ab.txt"},
      {"a\u200f\u061c\u00ad\u2060\ufeff.t\U000e0041xt", "a.txt"},
      {"\xff.txt", "\uFFFD.txt"},
      {std::string(500, 'x') + ".txt", std::string(116, 'x') + ".txt"},
      {std::string(119, 'x') + "\u00f6", std::string(119, 'x')},
      {"x." + std::string(500, 'y'), "x." + std::string(118, 'y')},
  };
  for (const auto& [wanted, name] : cases) EXPECT_EQ(web::upload_name(wanted), name) << wanted;
}

TEST(Uploads, TargetsAreParsed) {
  const auto target = web::parse_upload_target("transfer%232/File1/a%2Fb%20%C3%B6.txt");
  ASSERT_TRUE(target);
  EXPECT_EQ(target->form, "transfer#2");
  EXPECT_EQ(target->control, "File1");
  EXPECT_EQ(target->name, "a/b \u00f6.txt");
  for (const char* wrong : {"", "a", "a/b", "a/b/%", "a/b/%4", "a/b/%zz", "%0x/b/c"}) {
    EXPECT_FALSE(web::parse_upload_target(wrong)) << wrong;
  }
}

TEST(Uploads, NothingIsReplacedAndWhatBreaksOffIsGone) {
  const TemporaryFolder console;
  const web::UploadFolder folder(console.path());
  const auto upload = [&](std::string_view name, std::string_view content) {
    const auto file = folder.receive();
    file->write(content);
    return file->keep(name);
  };
  EXPECT_EQ(upload("a.txt", "first"), "a.txt");
  EXPECT_EQ(upload("x/a.txt", "second"), "a (2).txt");
  EXPECT_EQ(upload("a.txt", ""), "a (3).txt");
  EXPECT_EQ(upload("noending", ""), "noending");
  EXPECT_EQ(upload("noending", ""), "noending (2)");
  EXPECT_EQ(read_file(folder.path() / "a.txt"), "first");
  EXPECT_EQ(read_file(folder.path() / "a (2).txt"), "second");
  folder.receive()->write("broken off");
  EXPECT_TRUE(fs::is_empty(folder.path() / ".arriving"));

  const auto age = [&](const char* name, std::chrono::hours hours) {
    fs::last_write_time(folder.path() / name, fs::file_time_type::clock::now() - hours);
  };
  age("a.txt", 7 * 24h + 1h);
  age("a (2).txt", 7 * 24h - 1h);
  folder.sweep();
  EXPECT_FALSE(fs::exists(folder.path() / "a.txt"));
  EXPECT_TRUE(fs::exists(folder.path() / "a (2).txt"));

  std::ofstream(console.path() / "file") << "in the way of the folder";
  EXPECT_THROW((void)web::UploadFolder(console.path() / "file").receive(), Error);
}

// An account that shares the console's folder may make the links before the console makes the folders.
TEST(Uploads, AFolderThatLeadsElsewhereIsNeitherFilledNorEmptied) {
  const test::TemporaryFolder console;
  const auto secrets = console.path() / "secrets";
  const auto old = secrets / "accounts.json";
  fs::create_directory(secrets);
  std::ofstream(old) << "accounts";
  fs::last_write_time(old, fs::file_time_type::clock::now() - std::chrono::hours(24 * 30));
  const web::UploadFolder folder(console.path());
  const auto leads_to_secrets = [&] {
    EXPECT_FALSE(folder.sweep());
    EXPECT_THROW((void)folder.receive(), Error);
    EXPECT_TRUE(fs::exists(old));
  };
  fs::create_symlink("secrets", folder.path());
  leads_to_secrets();
  fs::remove(folder.path());

  // One of before, into which the group could write.
  fs::create_directory(folder.path());
  fs::permissions(folder.path(), fs::perms::all);
  fs::create_symlink("../secrets", folder.path() / ".arriving");
  leads_to_secrets();
  fs::remove(folder.path() / ".arriving");
  EXPECT_TRUE(folder.sweep());
  EXPECT_EQ(fs::status(folder.path()).permissions(), fs::perms::owner_all);
  EXPECT_EQ(folder.receive()->keep("a.txt"), "a.txt");
}

class SessionTransfers : public ::testing::Test {
 protected:
  void SetUp() override { session_.show("allcontrols"); }
  std::string source() { return std::string(session_.held("sample", "source", "text").as_string()); }
  std::string audit_log() { return read_file(session_.audit_file()); }

  SessionDriver session_{test_pages()};
};

TEST_F(SessionTransfers, AnUploadIsChosenInItsFileList) {
  EXPECT_EQ(error_of(session_.upload({"sample", "File1", "a.txt"}, "x")), "no_form");
  session_.click("allcontrols", "open");
  session_.receive("form");
  const web::Response response = session_.upload({"sample", "File1", "/x/a.txt"}, "content");
  EXPECT_EQ(json::parse(response.body).at("name"), "a.txt");
  session_.receive("change");
  EXPECT_EQ(source(), to_product_path(session_.folder() / "upload") + "\\a.txt");
  EXPECT_EQ(session_.rows("sample", "File1", 0, 5).at("rows"), json::parse(R"(["a.txt"])"));
  session_.upload({"sample", "File1", "a.txt"}, "other");
  while (source().find("(2)") == std::string::npos) session_.receive("change");
  EXPECT_EQ(read_file(session_.folder() / "upload" / "a (2).txt"), "other");
  EXPECT_THAT(audit_log(), HasSubstr("\tallcontrols\tupload\tok\ta.txt (7 bytes)\n"));

  for (const char* control : {"Dir1", "apply", "none"}) {
    EXPECT_EQ(error_of(session_.upload({"sample", control, "b.txt"}, "x")), "refused") << control;
  }
  EXPECT_FALSE(fs::exists(session_.folder() / "upload" / "b.txt"));
}

// The form writes to a place that only the host knows; people's own files and what they typed stay as they
// are.
TEST(SessionExchange, AListIsWrittenForTheUserAlone) {
  SessionDriver session(page_catalogue());
  session.show("localuser");
  EXPECT_EQ(session.held("localuser", "List1", "transfer"), "imexfile");
  session.event("localuser", "uemail", "text", {{"text", "user@mirvan.example"}});
  session.until_done(session.click("localuser", "adduser"));
  EXPECT_EQ(session.until_error(session.event("localuser", "List1", "fetch")), "refused");
  session.click("localuser", "imexfile");
  session.receive("form");
  const json::string typed = session.held("transfer", "source", "text").as_string();
  EXPECT_EQ(session.held("transfer", "File1", "exchange").at("run"), "action");

  for (int again = 0; again < 2; ++again) {
    session.event("transfer", "import", "click");
    const std::uint64_t fetch = session.event("transfer", "File1", "fetch");
    const json::object told = session.receive("file");
    EXPECT_EQ(told.at("awaited"), true);
    EXPECT_EQ(told.at("name"), "localmail.txt");
    const auto path = session.offered().fetch(told.at("token").as_string());
    ASSERT_TRUE(path);
    EXPECT_EQ(read_file(*path), "user@mirvan.example\n");
    session.until_done(fetch);
    EXPECT_EQ(session.held("transfer", "source", "text"), typed);
    EXPECT_EQ(session.held("transfer", "export", "value"), 1);
  }
  EXPECT_TRUE(fs::is_empty(session.folder() / "lists"));
}

TEST_F(SessionTransfers, AnUploadThatNobodyTakesIsAnswered) {
  session_.show("handlers");
  session_.click("handlers", "ask");
  session_.receive("box");
  // It waits behind the box; a reload forgets it.
  std::thread reload([this] {
    std::this_thread::sleep_for(100ms);
    session_.connect();
  });
  EXPECT_EQ(error_of(session_.upload({"handlers", "list", "a.txt"}, "x")), "refused");
  reload.join();
  EXPECT_TRUE(fs::is_empty(session_.folder() / "upload" / ".arriving"));
}

TEST_F(SessionTransfers, AnOfferIsToldAgainUntilItIsFetched) {
  session_.click("allcontrols", "offer");
  const json::object told = session_.receive("file");
  EXPECT_EQ(told.at("name"), "list of h\u00f6sts.txt");
  EXPECT_EQ(told.at("size"), 29);
  session_.connect();
  const json::object again = session_.receive("files");
  EXPECT_EQ(again.at("files").at(0).at("token"), told.at("token"));
  EXPECT_TRUE(session_.offered().fetch(told.at("token").as_string()));
  session_.connect();
  EXPECT_THAT(session_.receive("files").at("files").as_array(), IsEmpty());
}

}  // namespace

}  // namespace zrl::test
