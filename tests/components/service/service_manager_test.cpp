#include <functional>
#include <optional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "components/service/service.h"
#include "core/text/error.h"
#include "support/fake_service_manager.h"
#include "support/fake_services.h"
#include "support/service_environment.h"

namespace zrl::service {
namespace {

using test::FakeServiceManager;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Lt;
using Manner = FakeServiceManager::Manner;

// "active/running", with "..." behind it while an operation is under way.
std::string text_of(const ServiceState& state) {
  return state.status + "/" + state.state + (state.checkpoint != 0 ? "..." : "");
}

std::string problem_of(const std::function<void()>& action) {
  try {
    action();
  } catch (const Error& error) {
    return error.what();
  }
  return {};
}

class ServiceManagerTest : public testing::Test {
 protected:
  // Leads to the bus of a stand-in.
  FakeServiceManager& manager() {
    if (!manager_) environment_.use_bus(manager_.emplace().address());
    return *manager_;
  }

  // What the program wrote, by its exit status.
  ProgramResult program{1, "systemctl is out of order\nand more"};
  std::vector<std::string> program_calls;

  test::FakeServices console;
  std::shared_ptr<ServiceManager> services = make(
      console,
      [this](const ProgramStart& start, std::chrono::milliseconds) {
        program_calls.push_back(start.command_line());
        return program;
      },
      std::chrono::milliseconds(300));

 private:
  test::ServiceEnvironment environment_;
  std::optional<FakeServiceManager> manager_;
};

TEST_F(ServiceManagerTest, AUnitIsFoundInAnyCaseWhetherItIsLoadedOrNot) {
  manager().add("mirvan.service", false, "not-found");  // others want it; its own name is another
  manager().add("Mirvan.service", true);
  manager().add("acme-1.service", false);
  manager().add("hidden.service", false, "masked");
  manager().add("mirvan2.service", true);
  EXPECT_EQ(text_of(services->inspect("MIRVAN")), "active/running");
  EXPECT_EQ(services->inspect("MIRVAN").since, 1'700'000'000);
  EXPECT_EQ(text_of(services->inspect("Acme-1")), "inactive/dead");
  EXPECT_EQ(text_of(services->inspect("hidden")), "masked/dead");
  services->stop("mirvan");
  EXPECT_EQ(text_of(services->inspect("mirvan")), "deactivating/stop-sigterm...");
  manager().finish();
  EXPECT_EQ(text_of(services->inspect("mirvan")), "inactive/dead");
  services->start("acme-1");
  EXPECT_EQ(text_of(services->inspect("acme-1")), "activating/start-pre...");
  EXPECT_THAT(manager().orders(),
              ElementsAre("StopUnit Mirvan.service replace", "StartUnit acme-1.service replace"));
  EXPECT_THAT(program_calls, IsEmpty());
}

TEST_F(ServiceManagerTest, ANameThatNoUnitHasReachesNobody) {
  manager().add("mirvan.service", true);
  for (const char* name :
       {"", "*", "mirvan.service", "m?rvan", "[m]irvan", "../mirvan", "mir van", "mírvan"}) {
    EXPECT_EQ(text_of(services->inspect(name)), "/") << name;
    EXPECT_EQ(problem_of([&] { services->start(name); }), "no such service: " + std::string(name));
  }
  EXPECT_EQ(text_of(services->inspect(std::string(100'000, 'a'))), "/");
  EXPECT_THAT(manager().orders(), IsEmpty());
  EXPECT_THAT(program_calls, IsEmpty());
}

TEST_F(ServiceManagerTest, ARefusalIsToldAsLackOfPermission) {
  manager().add("mirvan.service", true);
  manager().set_manner(Manner::denying);
  program = {4, "Failed to stop mirvan.service: Access denied\n"};
  EXPECT_EQ(text_of(services->inspect("mirvan")), "active/running");
  EXPECT_THAT(problem_of([&] { services->stop("mirvan"); }),
              AllOf(HasSubstr("no permission: StopUnit: Interactive authentication required."),
                    HasSubstr("systemctl: Failed to stop mirvan.service: Access denied")));
}

TEST_F(ServiceManagerTest, AManagerThatMisbehavesCostsNoMoreThanTheTimeLimit) {
  manager().add("mirvan.service", true);
  for (const Manner manner : {Manner::silent, Manner::babbling, Manner::vanishing}) {
    manager().set_manner(manner);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_THAT(problem_of([&] { services->inspect("mirvan"); }),
                HasSubstr("; systemctl: systemctl is out of order"));
    EXPECT_THAT(std::chrono::steady_clock::now() - begin, Lt(std::chrono::seconds(5)));
  }
  manager().end_bus();
  EXPECT_THAT(problem_of([&] { services->inspect("mirvan"); }), HasSubstr("no system bus"));
}

TEST_F(ServiceManagerTest, ABusThatLetsNobodyInCostsNoMoreThanTheTimeLimit) {
  const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  test::TemporaryFolder folder;
  sockaddr_un address{AF_UNIX, {}};
  const std::string path = folder.path() / "bus";
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(::listen(listener, 1), 0);
  test::ServiceEnvironment::use_bus("unix:path=" + path);
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_THAT(problem_of([&] { services->inspect("mirvan"); }), HasSubstr("no system bus"));
  EXPECT_THAT(std::chrono::steady_clock::now() - begin, Lt(std::chrono::seconds(5)));
  ::close(listener);
}

TEST_F(ServiceManagerTest, WithoutABusTheProgramIsAsked) {
  const struct {
    const char* output;
    const char* state;
  } cases[] = {
      {"Id=Mirvan.service\nLoadState=loaded\nActiveState=active\nSubState=running\n", "active/running"},
      {"Job=17\nId=m.service\nLoadState=loaded\nActiveState=inactive\nSubState=dead\n", "inactive/dead..."},
      {"Id=m.service\nLoadState=not-found\nActiveState=inactive\nSubState=dead\n\n"
       "Id=M.service\nLoadState=loaded\nActiveState=failed\nSubState=failed\nJob=\n\n"
       "Id=x.service\nLoadState=loaded\nActiveState=active",
       "failed/failed"},
      {"Id=m.service\nLoadState=not-found\n", "/"},
      {"", "/"},
      {"\n\n=\nx\nId", "/"},
  };
  for (const auto& [output, state] : cases) {
    program = {0, output};
    EXPECT_EQ(text_of(services->inspect("Mirvan")), state) << output;
    EXPECT_EQ(program_calls.back(),
              "systemctl --no-pager show --timestamp=unix "
              "--property=Id,LoadState,ActiveState,SubState,Job,StateChangeTimestamp -- "
              "[Mm][Ii][Rr][Vv][Aa][Nn].service mirvan.service Mirvan.service");
  }
  program = {0, "Id=m.service\nLoadState=loaded\nActiveState=active\nStateChangeTimestamp=@1700000000\n"};
  EXPECT_EQ(services->inspect("Mirvan").since, 1'700'000'000);
  program = {0, ""};
  EXPECT_THAT(problem_of([&] { services->start("Mirvan"); }),
              HasSubstr("systemctl: no such service: Mirvan"));
  program = {0, cases[0].output};
  services->start("mirvan");
  EXPECT_EQ(program_calls.back(),
            "systemctl --no-pager --no-block --no-ask-password start -- Mirvan.service");
}

}  // namespace
}  // namespace zrl::service
