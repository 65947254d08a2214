#include <array>

#include <gtest/gtest.h>

#include "host/web/running_host.h"
#include "support/all_controls_page.h"

namespace zrl::test {

namespace {

constexpr std::array<PageEntry, 1> pages = {
    {{"allcontrols", "Test", "All controls", make_page<AllControlsPage>}}};

TEST(WebHost, ShowsAPageAndTellsWhatChanges) {
  RunningHost host({.pages = pages});
  WebClient client = host.sign_in();
  WebSocket socket(client);
  ASSERT_EQ(socket.status, 101);
  const json::object hello = socket.receive("hello");
  EXPECT_EQ(hello.at("account"), "admin");
  EXPECT_EQ(hello.at("open"), nullptr);
  socket.until_done(socket.open("allcontrols"));
  EXPECT_EQ(socket.forms.at("allcontrols").at("Check1").at("value"), 1);
  socket.until_done(socket.event("allcontrols", "Text1", "text", {{"text", "hello"}}));
  EXPECT_EQ(socket.forms.at("allcontrols").at("echo").at("caption"), "You typed: hello");
  EXPECT_EQ(socket.forms.at("allcontrols").at("Text1").at("text"), "");
}

}  // namespace

}  // namespace zrl::test
