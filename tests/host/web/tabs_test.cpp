// The tabs of a signed-in browser: each has a console of its own, and comes back to it.
#include <chrono>
#include <fstream>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "catalogue/catalogue.h"
#include "core/contracts/database.h"
#include "core/contracts/statement.h"
#include "core/text/files.h"
#include "host/web/handler_page.h"
#include "host/web/running_host.h"

namespace zrl::test {

namespace {

using namespace std::chrono_literals;
using ::testing::HasSubstr;

// A tab with its greeting.
struct OpenTab {
  explicit OpenTab(WebClient& client, std::string_view query = {})
      : socket(client, query), hello(socket.receive("hello")), id(hello.at("tab").as_string()) {}

  std::string again() const { return "?tab=" + id; }
  void type(std::string_view text) {
    socket.until_done(socket.event("handlers", "shouted", "text", {{"text", text}}));
  }
  std::string typed() {
    if (!socket.forms.contains("handlers")) socket.receive("form");
    return std::string(socket.held("handlers", "shouted", "text").as_string());
  }

  WebSocket socket;
  json::object hello;
  std::string id;
};

TEST(Tabs, EachHasItsConsoleAndComesBackToIt) {
  RunningHost host({.pages = test_pages()});
  WebClient client = host.sign_in();
  OpenTab one(client);
  OpenTab two(client);
  EXPECT_NE(one.id, two.id);
  for (OpenTab* tab : {&one, &two}) tab->socket.until_done(tab->socket.open("handlers"));
  one.type("one");
  two.type("two");

  // The line of the first is lost, which the host has not noticed yet.
  OpenTab first(client, one.again());
  EXPECT_EQ(first.id, one.id);
  EXPECT_EQ(first.hello.at("open"), "handlers");
  EXPECT_EQ(first.typed(), "ONE");
  EXPECT_EQ(one.socket.close_code(), 4001);
  // A copy of the second, by a browser that duplicates tabs, takes nothing from it.
  OpenTab copy(client, two.again() + "&copy=1");
  EXPECT_NE(copy.id, two.id);
  EXPECT_EQ(copy.hello.at("open"), nullptr);
  two.type("still two");
  EXPECT_EQ(two.typed(), "STILL TWO");
  // Unless the second is gone.
  two.socket.send_frame(8, "");
  two.socket.close_code();
  OpenTab restored(client, two.again() + "&copy=1");
  EXPECT_EQ(restored.id, two.id);
  EXPECT_EQ(restored.typed(), "STILL TWO");

  // An id opens nothing by itself, whoever is signed in.
  WebClient other = host.sign_in();
  OpenTab foreign(other, one.again());
  EXPECT_NE(foreign.id, one.id);
  EXPECT_EQ(foreign.hello.at("open"), nullptr);
  WebClient stranger(host.port());
  EXPECT_EQ(WebSocket(stranger, one.again()).status, 401);

  // Signing out ends them all, and those of nobody else.
  EXPECT_EQ(client.post("/api/logout", json::object()).status, 200);
  for (OpenTab* tab : {&first, &copy, &restored}) EXPECT_EQ(tab->socket.close_code(), 4002);
  foreign.socket.until_done(foreign.socket.open("handlers"));
}

TEST(Tabs, OutliveALostLineForAWhileAndTheSignInOutlivesThem) {
  web::WebHostOptions options{.pages = test_pages()};
  options.session_limits.times.lost = 1500ms;
  options.session_limits.sweep = 20ms;
  RunningHost host(std::move(options));
  WebClient client = host.sign_in();
  std::string again;
  {
    OpenTab tab(client);
    tab.socket.until_done(tab.socket.open("handlers"));
    tab.type("typed");
    again = tab.again();
  }
  std::this_thread::sleep_for(400ms);
  {
    OpenTab tab(client, again);
    EXPECT_EQ(tab.typed(), "TYPED");
  }
  EXPECT_FALSE(std::filesystem::exists(host.folder() / "handlers-left"));
  while (!std::filesystem::exists(host.folder() / "handlers-left")) std::this_thread::sleep_for(10ms);
  EXPECT_EQ(client.get("/api/state").object().at("account"), "admin");
  OpenTab tab(client, again);
  EXPECT_NE(tab.again(), again);
  EXPECT_EQ(tab.hello.at("open"), nullptr);
}

TEST(Tabs, AreCounted) {
  web::WebHostOptions options{.pages = test_pages()};
  options.session_limits.tabs = 2;
  RunningHost host(std::move(options));
  WebClient client = host.sign_in();
  OpenTab one(client);
  std::string two;
  {
    OpenTab tab(client);
    two = tab.again();
    EXPECT_EQ(WebSocket(client).close_code(), 4003);
  }
  // A line that was lost keeps its place; a page that was left gives way.
  std::this_thread::sleep_for(100ms);
  EXPECT_EQ(WebSocket(client).close_code(), 4003);
  {
    OpenTab tab(client, two);
    EXPECT_EQ(tab.again(), two);
    tab.socket.send_frame(8, std::string("\x03\xe9", 2));  // going away
    tab.socket.close_code();
  }
  OpenTab three(client);
  EXPECT_NE(three.again(), two);
  EXPECT_EQ(WebSocket(client, two).close_code(), 4003);
  one.socket.until_done(one.socket.open("handlers"));
  // Another person's tabs are counted by themselves.
  WebClient other = host.sign_in();
  OpenTab fourth(other);
}

// What belongs to the session is limited for all of its tabs together.
TEST(Tabs, ShareTheLimitsAndTheFilesOfTheirSession) {
  RunningHost host({.pages = test_pages()});
  WebClient client = host.sign_in();
  OpenTab one(client);
  OpenTab two(client);
  const auto start = [](OpenTab& tab, std::string_view command) {
    tab.socket.until_done(tab.socket.event("handlers", "command", "text", {{"text", command}}));
    tab.socket.until_done(tab.socket.click("handlers", "program"));
  };
  for (OpenTab* tab : {&one, &two}) {
    tab->socket.until_done(tab->socket.open("handlers"));
    for (int i = 0; i < 4; ++i) start(*tab, "sleep 60");
  }
  two.socket.click("handlers", "program");
  const json::object refused = two.socket.receive("activity");
  EXPECT_EQ(refused.at("failed"), 1);
  one.socket.send(json::parse(R"({"type": "end", "id": 1})"));
  one.socket.receive("gone");
  for (bool started = false; !started;) {
    two.socket.click("handlers", "program");
    started = two.socket.receive("activity").at("failed") == 0;
  }

  one.socket.until_done(one.socket.open("allcontrols"));
  one.socket.click("allcontrols", "offer");
  const std::string path = "/file/" + std::string(one.socket.receive("file").at("token").as_string());
  EXPECT_EQ(client.get(path).status, 200);
}

TEST(Tabs, SixtyFourAtOnceAreResponsive) {
  RunningHost host({.pages = page_catalogue()});
  WebClient client = host.sign_in();
  std::vector<std::unique_ptr<OpenTab>> tabs;
  for (int i = 0; i < 64; ++i) tabs.push_back(std::make_unique<OpenTab>(client));
  EXPECT_EQ(WebSocket(client).close_code(), 4003);
  std::vector<std::uint64_t> sent;
  for (const auto& tab : tabs) sent.push_back(tab->socket.open("domainbw"));
  for (std::size_t i = 0; i < tabs.size(); ++i) tabs[i]->socket.until_done(sent[i]);
  // All of them write at the same time, to the same list; nothing of it is lost.
  const auto begin = std::chrono::steady_clock::now();
  for (std::size_t i = 0; i < tabs.size(); ++i) {
    tabs[i]->socket.event("domainbw", "Text1", "text", {{"text", "tab" + std::to_string(i) + ".example"}});
    sent[i] = tabs[i]->socket.click("domainbw", "Command3");
  }
  for (std::size_t i = 0; i < tabs.size(); ++i) tabs[i]->socket.until_done(sent[i]);
  const auto took = std::chrono::steady_clock::now() - begin;
  std::cout << "64 tabs that add an entry each: "
            << std::chrono::duration_cast<std::chrono::milliseconds>(took).count() << " ms\n";
  EXPECT_LT(took, 30s);
  OpenTab& last = *tabs.back();
  last.socket.until_done(last.socket.click("domainbw", "refrall"));
  EXPECT_EQ(last.socket.held("domainbw", "List2", "items").at("length"), 64);
}

TEST(Tabs, TwoOfThemDoNotOverwriteEachOther) {
  RunningHost host({.pages = page_catalogue()});
  WebClient client = host.sign_in();
  OpenTab one(client);
  OpenTab two(client);
  for (OpenTab* tab : {&one, &two}) tab->socket.until_done(tab->socket.open("strings"));
  const auto type = [](OpenTab& tab, std::string_view field, std::string_view text) {
    tab.socket.until_done(tab.socket.event("strings", field, "text", {{"text", text}}));
  };
  type(one, "hello", "250 one");
  EXPECT_EQ(one.socket.held("strings", "hello", "unsaved"), true);
  one.socket.until_done(one.socket.click("strings", "updatedb"));
  EXPECT_EQ(one.socket.held("strings", "hello", "unsaved"), false);
  type(two, "bye", "221 two");
  two.socket.until_done(two.socket.click("strings", "updatedb"));
  EXPECT_EQ(two.socket.held("strings", "hello", "text"), "250 one");
  type(one, "bye", "221 one");
  const std::uint64_t save = one.socket.click("strings", "updatedb");
  const json::object box = one.socket.receive("box");
  EXPECT_EQ(box.at("buttons"), json::parse(R"(["ok", "other", "cancel"])"));
  EXPECT_THAT(std::string(box.at("text").as_string()), HasSubstr("221 two"));
  one.socket.answer(box, "other");
  one.socket.until_done(save);
  EXPECT_EQ(one.socket.held("strings", "bye", "text"), "221 two");

  // A list that the other one changes says so, when it is asked for.
  for (OpenTab* tab : {&one, &two}) tab->socket.until_done(tab->socket.open("domainbw"));
  two.socket.event("domainbw", "Text1", "text", {{"text", "spam.example"}});
  two.socket.until_done(two.socket.click("domainbw", "Command3"));
  while (!one.socket.forms.at("domainbw").at("List2").as_object().contains("stale")) {
    one.socket.send(json::parse(R"({"type": "look"})"));
    one.socket.receive("change");
  }
  EXPECT_EQ(one.socket.held("domainbw", "List2", "items").at("length"), 0);
  one.socket.until_done(one.socket.event("domainbw", "List2", "reload"));
  EXPECT_EQ(one.socket.held("domainbw", "List2", "items").at("length"), 1);
  EXPECT_EQ(one.socket.held("domainbw", "List2", "stale"), false);
}

}  // namespace

}  // namespace zrl::test
