#include <algorithm>
#include <chrono>
#include <fstream>
#include <mutex>
#include <optional>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sodium.h>

#include "core/text/text.h"
#include "host/web/accounts.h"
#include "host/web/list_filter.h"
#include "host/web/origin_check.h"
#include "support/temporary_folder.h"

// The parts of the web host that need neither a session nor a network.
namespace zrl::test {

namespace {

using namespace std::chrono_literals;
using ::testing::IsEmpty;

// Runs what was posted when it is told to.
class ManualLoop : public web::IoLoop {
 public:
  void post(std::function<void()> task) override {
    const std::scoped_lock lock(mutex_);
    tasks_.push_back(std::move(task));
  }
  void after(std::chrono::milliseconds, std::function<void()>) override {}

  void run_one() {
    for (;; std::this_thread::sleep_for(1ms)) {
      std::function<void()> task;
      {
        const std::scoped_lock lock(mutex_);
        if (tasks_.empty()) continue;
        task = std::move(tasks_.front());
        tasks_.erase(tasks_.begin());
      }
      return task();
    }
  }

 private:
  std::mutex mutex_;
  std::vector<std::function<void()>> tasks_;
};

TEST(ListFilter, FindsRowsThatContainTheText) {
  const StringList rows{"Alpha", "", "beta ALPHA", "al", "pha", "alalpha", "gamma\xff", "\xc3\x84 alph", "a"};
  struct Case {
    const char* filter;
    std::vector<std::uint32_t> found;
  };
  const Case cases[] = {
      {"alpha", {0, 2, 5}}, {"ALPHA", {0, 2, 5}}, {"lph", {0, 2, 5, 7}}, {"alph", {0, 2, 5, 7}},
      {"\xff", {6}},        {"\xc3\x84", {7}},    {"pha", {0, 2, 4, 5}}, {"ta a", {2}},
      {"alpha ", {}},       {"mmm", {}},          {"phaalalpha", {}}};
  for (const Case& tried : cases) {
    EXPECT_EQ(web::matching_rows(rows, tried.filter), tried.found) << tried.filter;
  }
  EXPECT_THAT(web::matching_rows({}, "a"), IsEmpty());
  EXPECT_THAT(web::matching_rows({"", "", ""}, "a"), IsEmpty());
}

// The same answer as the obvious search, on rows that are likely to match in part and across.
TEST(ListFilter, AgreesWithAPlainSearch) {
  std::uint32_t random = 12345;
  const auto next = [&random](std::uint32_t limit) {
    random = random * 1664525 + 1013904223;
    return (random >> 16) % limit;
  };
  const auto text = [&](std::size_t longest) {
    std::string made;
    for (std::uint32_t i = next(static_cast<std::uint32_t>(longest) + 1); i > 0; --i) made += "abAB"[next(4)];
    return made;
  };
  for (int round = 0; round < 300; ++round) {
    StringList rows;
    for (int i = 0; i < 40; ++i) rows.push_back(text(8));
    const std::string filter = text(4) + "a";
    std::vector<std::uint32_t> expected;
    for (std::uint32_t i = 0; i < rows.size(); ++i) {
      if (lower(rows[i]).find(lower(filter)) != std::string::npos) expected.push_back(i);
    }
    ASSERT_EQ(web::matching_rows(rows, filter), expected) << filter;
  }
}

// The same as sorting whole keys, on rows that share beginnings, ends and bytes beyond ASCII.
TEST(ListOrder, AgreesWithAPlainSort) {
  const auto labels = [](std::string_view row) {
    std::vector<std::string> parts;
    std::string text = lower(row);
    const std::size_t at = text.rfind('@');
    std::string domain = at == text.npos ? text : text.substr(at + 1);
    for (std::size_t dot = domain.rfind('.'); dot != domain.npos; dot = domain.rfind('.')) {
      parts.push_back(domain.substr(dot + 1));
      domain.resize(dot);
    }
    parts.push_back(domain);
    if (at != text.npos) parts.push_back(text.substr(0, at));
    return parts;
  };
  std::uint32_t random = 4711;
  const auto next = [&random](std::uint32_t limit) {
    random = random * 1664525 + 1013904223;
    return (random >> 16) % limit;
  };
  StringList rows{"", ".", "@", "a@", "host.EXAMPLE", "\xc3\xa4.example", "x@y@z.example", ".example"};
  for (int i = 0; i < 3000; ++i) {
    std::string row;
    if (next(3) == 0) row += std::string(1, "abAB"[next(4)]) + (next(2) == 0 ? ".c@" : "@");
    for (std::uint32_t label = next(4); label > 0; --label)
      row += std::string(next(12), "abAB"[next(4)]) + ".";
    rows.push_back(row + (next(2) == 0 ? "example" : "a-long-domain-of-nobody.example"));
  }
  const auto expected = [&rows](const auto& key) {
    std::vector<std::uint32_t> order(rows.size());
    for (std::uint32_t i = 0; i < order.size(); ++i) order[i] = i;
    std::stable_sort(order.begin(), order.end(),
                     [&](std::uint32_t a, std::uint32_t b) { return key(rows[a]) < key(rows[b]); });
    return order;
  };
  EXPECT_EQ(web::sorted_rows(rows, web::ListOrder::text),
            expected([](std::string_view row) { return lower(row); }));
  EXPECT_EQ(web::sorted_rows(rows, web::ListOrder::domain_end), expected(labels));
}

TEST(ListOrder, SortsManyRowsThatBeginAlike) {
  StringList rows;
  for (std::uint32_t i = 0; i < 200'000; ++i) {
    rows.push_back("host" + std::to_string(i * 2654435761U) + ".spam.example");
  }
  for (const web::ListOrder order : {web::ListOrder::text, web::ListOrder::domain_end}) {
    const std::vector<std::uint32_t> sorted = web::sorted_rows(rows, order);
    EXPECT_TRUE(std::ranges::is_sorted(sorted, {}, [&rows](std::uint32_t row) { return rows[row]; }));
  }
  // Nothing but the text's end differs, and nothing does.
  const StringList alike{std::string(100'000, 'x') + "b", std::string(100'000, 'x') + "A"};
  EXPECT_THAT(web::sorted_rows(alike, web::ListOrder::text), ::testing::ElementsAre(1, 0));
  EXPECT_THAT(web::sorted_rows(alike, web::ListOrder::domain_end), ::testing::ElementsAre(0, 1));
}

TEST(OriginCheck, OnlyOurOwnPagesAreLetIn) {
  struct Case {
    const char* listen;
    const char* method;
    const char* host;
    const char* origin;
    bool over_tls;
    bool ours;
  };
  const Case cases[] = {{"127.0.0.1", "GET", "127.0.0.1:8025", "", false, true},
                        {"127.0.0.1", "GET", "localhost:9000", "", false, true},
                        {"127.0.0.1", "GET", "[::1]:8025", "", false, true},
                        {"127.0.0.1", "GET", "LocalHost", "", false, true},
                        {"127.0.0.1", "GET", "evil.example:8025", "", false, false},
                        {"127.0.0.1", "GET", "192.0.2.1:8025", "", false, false},
                        {"127.0.0.1", "GET", "", "", false, false},
                        {"127.0.0.1", "GET", "127.0.0.1:8025.evil.example", "", false, false},
                        {"127.0.0.1", "GET", "localhost:8025", "http://evil.example", false, false},
                        {"127.0.0.1", "GET", "localhost:8025", "http://localhost:8025", false, true},
                        {"127.0.0.1", "POST", "localhost:8025", "", false, false},
                        {"127.0.0.1", "POST", "localhost:8025", "null", false, false},
                        {"127.0.0.1", "POST", "localhost:8025", "http://localhost:8025", false, true},
                        {"127.0.0.1", "POST", "localhost:8025", "http://localhost:8026", false, false},
                        {"127.0.0.1", "POST", "localhost:8025", "https://localhost:8025", false, false},
                        {"127.0.0.1", "POST", "localhost:8025", "https://localhost:8025", true, true},
                        {"127.0.0.1", "POST", "localhost:8025", "http://localhost:8025", true, false},
                        {"127.0.0.1", "POST", "console.example", "https://console.example", false, true},
                        {"127.0.0.1", "POST", "CONSOLE.example", "https://console.EXAMPLE", false, true},
                        {"127.0.0.1", "POST", "other.example", "https://other.example", false, false},
                        {"192.0.2.7", "GET", "192.0.2.7:8025", "", false, true},
                        {"192.0.2.7", "GET", "localhost:8025", "", false, false},
                        {"0.0.0.0", "GET", "192.0.2.7:8025", "", false, true},
                        {"::", "GET", "[2001:db8::1]:8025", "", false, true},
                        {"0.0.0.0", "GET", "evil.example", "", false, false}};
  for (const Case& tried : cases) {
    web::Request request;
    request.method = tried.method;
    request.path = "/";
    request.host = tried.host;
    request.origin = tried.origin;
    request.over_tls = tried.over_tls;
    EXPECT_EQ(web::OriginCheck(tried.listen, {"Console.example:443"}).is_ours(request), tried.ours)
        << tried.listen << " " << tried.method << " " << tried.host << " " << tried.origin;
  }
  web::Request socket;
  socket.method = "GET";
  socket.path = "/ws";
  socket.host = "localhost:8025";
  EXPECT_FALSE(web::OriginCheck("127.0.0.1", {}).is_ours(socket));
}

class AccountsTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_GE(::sodium_init(), 0); }

  static constexpr web::PasswordCost cheap{.operations = 1, .memory_bytes = 8192};

  bool verify(web::Accounts& accounts, const std::string& account, const std::string& password) {
    bool result = false;
    EXPECT_TRUE(accounts.verify(account, password, web::Accounts::Urgency::known,
                                [&](bool right) { result = right; }));
    loop_.run_one();
    return result;
  }
  web::Accounts::Creation create(web::Accounts& accounts, const std::string& account) {
    auto result = web::Accounts::Creation::not_saved;
    EXPECT_TRUE(accounts.create_first(account, "correct horse",
                                      [&](web::Accounts::Creation creation) { result = creation; }));
    loop_.run_one();
    return result;
  }

  TemporaryFolder folder_;
  std::filesystem::path file_ = folder_.path() / "accounts.json";
  ManualLoop loop_;
};

TEST_F(AccountsTest, OutliveTheProgramWithoutThePassword) {
  {
    web::Accounts accounts(file_, loop_, cheap);
    EXPECT_TRUE(accounts.empty());
    EXPECT_FALSE(verify(accounts, "admin", "correct horse"));
    EXPECT_EQ(create(accounts, "admin"), web::Accounts::Creation::created);
    EXPECT_EQ(create(accounts, "second"), web::Accounts::Creation::exists_already);
  }
  web::Accounts accounts(file_, loop_, cheap);
  EXPECT_TRUE(verify(accounts, "admin", "correct horse"));
  EXPECT_FALSE(verify(accounts, "admin", "correct horsf"));
  EXPECT_FALSE(verify(accounts, "second", "correct horse"));
  std::ifstream stream(file_);
  const std::string text{std::istreambuf_iterator<char>(stream), {}};
  EXPECT_THAT(text, ::testing::HasSubstr("$argon2id$"));
  EXPECT_THAT(text, ::testing::Not(::testing::HasSubstr("correct")));
  EXPECT_EQ(std::filesystem::status(file_).permissions(), std::filesystem::perms(0600));
}

TEST_F(AccountsTest, AFileThatCannotBeUsedIsTold) {
  {
    web::Accounts accounts(folder_.path() / "missing" / "accounts.json", loop_, cheap);
    EXPECT_EQ(create(accounts, "admin"), web::Accounts::Creation::not_saved);
    EXPECT_TRUE(accounts.empty());
  }
  for (const char* text : {"", "{}", "[]", R"({"accounts": [{"name": 1, "password": "x"}]})"}) {
    std::ofstream(file_) << text;
    EXPECT_THROW(web::Accounts(file_, loop_, cheap), std::runtime_error) << text;
  }
}

// However many strangers' passwords wait, one who signed in before is served next.
TEST_F(AccountsTest, StrangersDoNotKeepTheKnownWaiting) {
  web::Accounts accounts(file_, loop_, {.operations = 1, .memory_bytes = 64 << 20});
  int strangers = 0;
  std::optional<int> before;
  int taken = 0;
  while (accounts.verify("nobody", "guess", web::Accounts::Urgency::stranger, [&](bool) { ++strangers; })) {
    ++taken;
  }
  EXPECT_GE(taken, 16);
  ASSERT_TRUE(
      accounts.verify("admin", "right", web::Accounts::Urgency::known, [&](bool) { before = strangers; }));
  while (!before) loop_.run_one();
  EXPECT_LE(*before, 6);
}

TEST_F(AccountsTest, NamesAndSecretsAreChecked) {
  EXPECT_TRUE(web::Accounts::is_acceptable_name("Jörg Müller"));
  for (const std::string& name :
       {std::string(), std::string(" a"), std::string("a\nb"), std::string(65, 'a')}) {
    EXPECT_FALSE(web::Accounts::is_acceptable_name(name)) << name;
  }
  web::SetupSecret secret;
  EXPECT_FALSE(secret.is(""));
  const std::string text = secret.make();
  EXPECT_TRUE(secret.is(" " + text + "\n"));
  EXPECT_FALSE(secret.is(text.substr(1)));
  EXPECT_NE(text, secret.make());
  EXPECT_FALSE(secret.is(text));
}

}  // namespace

}  // namespace zrl::test
