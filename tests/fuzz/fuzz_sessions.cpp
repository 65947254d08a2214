#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "host/web/session_console.h"
#include "support/all_controls_page.h"

// What a browser may send, whatever it is: one message a line, to a session that shows a page with
// every kind of control.
namespace {

class NoOutput : public zrl::web::SessionOutput {
 public:
  void send(std::uint64_t, std::string) override {}
  void violated(std::uint64_t) override {}
  void person_acted() override {}
  void action_began() override {}
  void action_ended() override {}
  void progress(std::string, std::uint64_t, std::uint64_t) override {}
  void language_is(std::string) override {}
};

constexpr zrl::PageEntry pages[] = {
    {"allcontrols", "Test", "All controls", zrl::make_page<zrl::test::AllControlsPage>}};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using zrl::web::Incoming;
  const zrl::web::ConsoleSettings settings{std::filesystem::temp_directory_path() / "fuzz-messages-nowhere",
                                           pages,
                                           {},
                                           std::make_shared<zrl::web::AuditFile>("/nowhere/audit.log"),
                                           size % 2 == 0};
  zrl::web::Inbox inbox([] {});
  zrl::web::OfferedFiles offered;
  NoOutput output;
  ::setenv("PATH", "/nowhere", 1);  // no program is found
  inbox.push({Incoming::Kind::connected, 1, {}});
  // The connection box of the page, which has no database here, and what is fuzzed then.
  inbox.push({Incoming::Kind::message, 1, R"({"type":"open","page":"allcontrols","seq":1})"});
  inbox.push({Incoming::Kind::message, 1, R"({"type":"answer","id":1,"reply":"ok"})"});
  std::string line;
  for (std::size_t i = 0; i < size; ++i) {
    if (data[i] != '\n') {
      line += static_cast<char>(data[i]);
      continue;
    }
    inbox.push({Incoming::Kind::message, 1, std::move(line)});
    line.clear();
  }
  inbox.push({Incoming::Kind::message, 1, std::move(line)});
  inbox.push({Incoming::Kind::stopping, 0, {}});
  zrl::web::TerminalPlaces terminals;
  zrl::web::SessionConsole(settings, {"fuzz", "tab"}, terminals, inbox, offered, output).run();
  return 0;
}
