#include "core/contracts/last_update.h"
#include "downloader_fixture.h"

namespace zrl::downloader {
namespace {

using std::chrono::milliseconds;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using Clock = std::chrono::steady_clock;

using FetchTest = test::DownloaderTest;

std::string gzipped(const std::string& command) {
  FILE* pipe = ::popen((command + " | gzip -c").c_str(), "r");
  std::string result;
  char block[65536];
  for (std::size_t got = 0; (got = std::fread(block, 1, sizeof block, pipe)) > 0;) result.append(block, got);
  ::pclose(pipe);
  return result;
}

std::string lines(std::size_t size) {
  std::string result;
  while (result.size() < size) result += "a.example\n";
  return result;
}

std::string compressed_answer(const std::string& bytes) {
  return test::http_answer(bytes, "Content-Encoding: gzip\r\nConnection: close\r\n");
}

TEST_F(FetchTest, WhatIsPublishedArrivesAndTheRestStaysAsItWas) {
  write("delblack.txt", "old\n");
  server.publish("/lists/addblack.txt", "a.example\nb.example\n");
  server.publish("/lists/addextension", "");
  write("addextension", "exe\n");
  EXPECT_EQ(update(), "2 of 3 list files fetched from " + address +
                          "\naddblack.txt: fetched, 20 bytes\ndelblack.txt: not published\n"
                          "addextension: fetched, 0 bytes");
  EXPECT_EQ(failures(), "");
  EXPECT_EQ(read("addblack.txt"), "a.example\nb.example\n");
  EXPECT_EQ(read("delblack.txt"), "old\n");
  EXPECT_EQ(read("addextension"), "");
  EXPECT_THAT(names(), ElementsAre("addblack.txt", "addextension", "delblack.txt"));
  const auto noted = read_last_update(folder.path());
  ASSERT_TRUE(noted.has_value());
  EXPECT_NEAR(static_cast<double>(noted->time), static_cast<double>(std::time(nullptr)), 60);
  EXPECT_EQ(noted->problem, "");
}

TEST_F(FetchTest, FilesArriveInAnyFormThatServersUse) {
  const std::string head = "HTTP/1.1 200 OK\r\n";
  server.publish("/elsewhere", "new\n");
  const std::pair<const char*, std::string> cases[] = {
      {"chunks", head + "Transfer-Encoding: chunked\r\n\r\n1\r\nn\r\n3\r\new\n\r\n0\r\n\r\n"},
      {"trailers", head + "Transfer-Encoding: chunked\r\n\r\n4\r\nnew\n\r\n0\r\nX: y\r\n\r\n"},
      {"no length", head + "\r\nnew\n"},
      {"old protocol", "HTTP/1.0 200 OK\r\n\r\nnew\n"},
      {"compressed in parts", compressed_answer(gzipped("printf n") + gzipped("echo ew"))},
      {"compressed", compressed_answer(gzipped("echo new"))},
      {"moved", "HTTP/1.1 301 Moved\r\nLocation: ../elsewhere\r\nContent-Length: 0\r\n\r\n"},
      {"interim answer", "HTTP/1.1 100 Continue\r\n\r\n" + test::http_answer("new\n")},
  };
  for (const auto& [name, answer] : cases) {
    write("addblack.txt", "old\n");
    server.answer_bytes("/lists/addblack.txt", answer);
    EXPECT_THAT(update(), StartsWith("1 of 3")) << name;
    EXPECT_EQ(read("addblack.txt"), "new\n") << name;
  }
}

TEST_F(FetchTest, AFileThatDoesNotArriveCompleteReplacesNothing) {
  options.limits.file_bytes = 100'000;
  options.limits.stall = std::chrono::seconds(1);
  const std::string head = "HTTP/1.1 200 OK\r\n";
  const std::string text = gzipped("seq 10000");
  const struct {
    const char* name;
    std::string answer;
    const char* reason;
  } cases[] = {
      {"error", "HTTP/1.1 500 Oops\r\nContent-Length: 4\r\n\r\nold!", "status 500"},
      {"nothing new", "HTTP/1.1 304 Not Modified\r\n\r\n", "status 304"},
      {"cut", head + "Content-Length: 100\r\n\r\nhalf", ""},
      {"cut within chunks", head + "Transfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n", ""},
      {"bad chunk", head + "Transfer-Encoding: chunked\r\n\r\nzz\r\nhello\r\n0\r\n\r\n", ""},
      {"cut within the head", "HTTP/1.1 200 OK\r\nContent-Len", ""},
      {"no answer", "", ""},
      {"no HTTP", "SSH-2.0-x\r\nhello\n", ""},
      {"two lengths", head + "Content-Length: 4\r\nContent-Length: 2000\r\n\r\nnew\n", ""},
      {"negative length", head + "Content-Length: -4\r\n\r\nnew\n", ""},
      {"announced size", head + "Content-Length: 100001\r\n\r\nx", "file size exceeded"},
      {"size without announcement", head + "\r\n" + lines(200'000),
       "larger than 100000 bytes|maximum allowed file size \\(100000\\)"},
      {"bomb", compressed_answer(gzipped("yes | head -c 67108864")), "larger than"},
      {"not what was compressed", compressed_answer("plain text"), ""},
      {"cut within compression", compressed_answer(text.substr(0, text.size() / 2)), ""},
      {"unknown compression", test::http_answer("x", "Content-Encoding: zrl\r\nConnection: close\r\n"), ""},
      {"web page", test::http_answer("<html>", "Content-Type: Text/HTML; charset=x\r\nConnection: close\r\n"),
       "web page"},
      {"local file", "HTTP/1.1 302 x\r\nLocation: file:///etc/passwd\r\n\r\n", "rotocol"},
      {"other protocol", "HTTP/1.1 302 x\r\nLocation: ftp://127.0.0.1/x\r\n\r\n", "rotocol"},
      {"moved to itself", "HTTP/1.1 302 x\r\nLocation: addblack.txt\r\n\r\n", "redirects"},
      {"terminal codes", "HTTP/1.1 302 x\r\nLocation: http://a\x1b[2Jb.invalid/\r\n\r\n", ""},
  };
  server.publish("/lists/delblack.txt", "b\n");
  for (const auto& [name, answer, reason] : cases) {
    write("addblack.txt", "old\n");
    server.answer_bytes("/lists/addblack.txt", answer);
    EXPECT_THAT(update(), StartsWith("1 of 3")) << name;
    EXPECT_THAT(failures(), StartsWith("addblack.txt: ")) << name;
    EXPECT_THAT(failures(), ::testing::ContainsRegex(reason)) << name;
    EXPECT_EQ(failures().find('\x1b'), std::string::npos) << name;
    EXPECT_TRUE(read("addblack.txt") == "old\n") << name;
    EXPECT_THAT(names(), ElementsAre("addblack.txt", "delblack.txt")) << name;
  }
}

TEST_F(FetchTest, AServerThatTakesItsTimeIsGivenUp) {
  options.limits.stall = std::chrono::seconds(1);
  server.publish("/lists/delblack.txt", "b\n");
  server.answer("/lists/addblack.txt", [](const test::HttpRequest&, test::ServedConnection& connection) {
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: 1000000\r\n\r\n");
    while (connection.send("x") && connection.pause(milliseconds(50))) continue;
    return false;
  });
  server.answer("/lists/addextension", [](const test::HttpRequest&, test::ServedConnection& connection) {
    while (connection.send("HTTP/1.1 200 OK\r\nX: y\r\n") && connection.pause(milliseconds(50))) continue;
    return false;
  });
  write("addblack.txt", "old\n");
  const auto begin = Clock::now();
  EXPECT_THAT(update(), StartsWith("1 of 3"));
  EXPECT_LT(Clock::now() - begin, std::chrono::seconds(15));
  EXPECT_EQ(downloader->failures().size(), 2u);
  EXPECT_EQ(read("addblack.txt"), "old\n");
  EXPECT_THAT(names(), ElementsAre("addblack.txt", "delblack.txt"));
}

TEST_F(FetchTest, WithoutAServerTheUpdateFailsWithTheReasonAndOldFilesStay) {
  write("addblack.txt", "old\n");
  address = "http://127.0.0.1:" + std::to_string(test::free_port());
  EXPECT_THAT(update(), testing::AllOf(StartsWith("error: no list file could be fetched from " + address),
                                       HasSubstr("onnect")));
  EXPECT_EQ(read("addblack.txt"), "old\n");
  EXPECT_THAT(read_last_update(folder.path()).value_or(LastUpdate()).problem,
              StartsWith("no list file could be fetched from " + address));
}

TEST_F(FetchTest, AServerThatNeverAnswersIsNotTriedForEveryFile) {
  published.clear();
  for (int i = 0; i < 30; ++i) published.push_back({"file" + std::to_string(i), ListKind::domains});
  options.limits.stall = std::chrono::seconds(1);
  const test::LoopbackServer silent([](test::ServedConnection& connection) {
    while (connection.pause(milliseconds(10'000))) continue;
  });
  address = "http://127.0.0.1:" + std::to_string(silent.port());
  EXPECT_THAT(update(), StartsWith("error: "));
  EXPECT_LE(silent.connections(), 4);
}

TEST_F(FetchTest, AServerThatPublishesNothingIsAFailure) {
  EXPECT_THAT(update(), StartsWith("error: no list file could be fetched from " + address));
  EXPECT_THAT(names(), ElementsAre());
}

TEST_F(FetchTest, ManyFilesShareFewConnections) {
  published.clear();
  for (int i = 0; i < 40; ++i) {
    published.push_back({"file" + std::to_string(i), ListKind::domains});
    server.publish("/lists/file" + std::to_string(i), std::to_string(i));
  }
  EXPECT_THAT(update(), StartsWith("40 of 40"));
  EXPECT_EQ(read("file39"), "39");
  EXPECT_LE(server.connections(), 4);
}

TEST_F(FetchTest, AllFilesTogetherHaveALimitOfBytesAndTime) {
  options.limits.total_bytes = 25;
  for (const char* name : {"addblack.txt", "delblack.txt", "addextension"}) {
    server.publish(std::string("/lists/") + name, std::string(10, 'x'));
  }
  EXPECT_THAT(update(), StartsWith("2 of 3"));
  EXPECT_THAT(failures(), HasSubstr("all files together"));

  options.limits.total = milliseconds(0);
  EXPECT_THAT(update(), HasSubstr("the time for the update is over"));
}

TEST_F(FetchTest, WaitingEventsAreServedAndTheProgressIsShown) {
  server.publish("/lists/delblack.txt", "b\n");
  std::atomic<int> served = 0;
  server.answer("/lists/addblack.txt", [&](const test::HttpRequest&, test::ServedConnection& connection) {
    const int before = served;
    while (served < before + 5 && connection.pause(milliseconds(5))) continue;
    return connection.send(test::http_answer("a\n"));
  });
  std::vector<std::pair<std::uint64_t, std::uint64_t>> reports;
  std::string last;
  console.on_process_events = [&] { ++served; };
  console.on_progress = [&](const Progress& progress) {
    reports.emplace_back(progress.done, progress.total);
    last = progress.text;
  };
  EXPECT_THAT(update(), StartsWith("2 of 3"));
  ASSERT_FALSE(reports.empty());
  EXPECT_EQ(reports.back(), std::make_pair(std::uint64_t{3}, std::uint64_t{3}));
  EXPECT_TRUE(std::is_sorted(reports.begin(), reports.end()));
  EXPECT_EQ(last, "download lists, 0.0 MB");
}

TEST_F(FetchTest, WhatServingRaisesEndsTheUpdateAndLeavesNothingBehind) {
  server.answer("/lists/addblack.txt", [](const test::HttpRequest&, test::ServedConnection& connection) {
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\nbegin");
    while (connection.pause(milliseconds(1000))) continue;
    return false;
  });
  write("addblack.txt", "old\n");
  console.on_process_events = [&] {
    if (names().size() > 1) throw Error(1, "the console is being stopped");
  };
  EXPECT_EQ(update(), "error: the console is being stopped");
  EXPECT_THAT(names(), ElementsAre("addblack.txt"));
  EXPECT_EQ(read("addblack.txt"), "old\n");
}

TEST_F(FetchTest, AFileThatCannotBeWrittenIsOneFailureAmongOthers) {
  std::filesystem::create_directories(folder.path() / "download" / "addblack.txt" / "x");
  server.publish("/lists/addblack.txt", "a\n");
  server.publish("/lists/delblack.txt", "b\n");
  EXPECT_THAT(update(), StartsWith("1 of 3"));
  EXPECT_THAT(failures(), StartsWith("addblack.txt: "));
  EXPECT_THAT(names(), ElementsAre("addblack.txt", "delblack.txt"));
}

TEST_F(FetchTest, WhatADeadProcessLeftBehindIsRemoved) {
  write(".new-1", "half");
  write(".new-2", "of another console");
  std::filesystem::last_write_time(folder.path() / "download" / ".new-1",
                                   std::filesystem::file_time_type::clock::now() - std::chrono::hours(48));
  update();
  EXPECT_THAT(names(), ElementsAre(".new-2"));
}

// Servers send all of these with a status of success and without a type.
TEST_F(FetchTest, WhatIsNoListDoesNotReplaceOne) {
  const std::string long_line(longest_list_line + 1, 'x');
  const struct {
    ListKind kind;
    std::string content;
    const char* reason;  // empty for a list
  } cases[] = {
      {ListKind::domains, "\xEF\xBB\xBF \r\n<!DOCTYPE html>", "a web page or XML"},
      {ListKind::domains, "<error>gone</error>", "a web page or XML"},
      {ListKind::domains, "{\"error\": 1}", "JSON"},
      {ListKind::names, "\t[\"a\"]\n", "JSON"},
      {ListKind::domains, std::string("a\n\0b\n", 5), "line 2 holds the control character 0"},
      {ListKind::domains, "a\nb\x1b[2J\n", "line 2 holds the control character 27"},
      {ListKind::domains, "a\n" + long_line + "\nb\n", "line 2 is too long"},
      {ListKind::domains, long_line, "line 1 is too long"},
      {ListKind::domains, std::string(3 * longest_list_line, 'x'), "line 1 is too long"},
      {ListKind::domains, std::string(600, '\n') + "<html>", "a web page or XML"},
      {ListKind::domains, "\xEF\xBB\xBF" + long_line.substr(1) + "\r\n" + long_line.substr(1), ""},
      {ListKind::domains, "", ""},
      {ListKind::domains, "REGEX[a]\n# <html>\n", ""},
      {ListKind::texts, "<HTML lang=\"en\">", "a web page or XML"},
      {ListKind::texts, "\n<?xml version=\"1.0\"?><list/>", "a web page or XML"},
      {ListKind::texts, "<Error><Code>NoSuchKey</Code></Error>\n", "XML"},
      {ListKind::texts, "{\n  \"error\": 1\n}", "JSON"},
      {ListKind::texts, "[\n  {\"a\": 1}\n]", "JSON"},
      {ListKind::texts, "<iframe\n[spam]\n{free}\n", ""},
      {ListKind::texts, "[spam]\nREGEX[<b>]\n", ""},
  };
  published = {{"addblack.txt", ListKind::domains}, {"delblack.txt", ListKind::domains}};
  server.publish("/lists/delblack.txt", "b\n");
  for (const auto& [kind, content, reason] : cases) {
    SCOPED_TRACE(content.substr(0, 40));
    published[0].kind = kind;
    write("addblack.txt", "good\n");
    server.answer_bytes("/lists/addblack.txt", test::http_answer(content, "Connection: close\r\n"));
    update();
    if (*reason == '\0') {
      EXPECT_EQ(failures(), "");
      EXPECT_EQ(read("addblack.txt"), content);
    } else {
      EXPECT_THAT(failures(), AllOf(StartsWith("addblack.txt: not a list file: "), HasSubstr(reason)));
      EXPECT_EQ(read("addblack.txt"), "good\n");
    }
    EXPECT_THAT(names(), ElementsAre("addblack.txt", "delblack.txt"));
  }
}

}  // namespace
}  // namespace zrl::downloader
