#include "service/service_control_page.h"

#include <fstream>
#include <optional>

#include <gmock/gmock.h>

#include "core/text/files.h"
#include "support/fake_service_manager.h"
#include "support/service_environment.h"
#include "support/shown_page.h"

namespace zrl {
namespace {

using test::FakeServiceManager;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Manner = FakeServiceManager::Manner;

class ServiceControlPageTest : public testing::Test, public test::ShownPage<ServiceControlPage> {
 protected:
  FakeServiceManager& manager() {
    if (!manager_) environment.use_bus(manager_.emplace().address());
    return *manager_;
  }

  // The four fields as they are shown: mail server, its port, listening address, its port.
  static std::string fields(const ServiceControlPage& page) {
    return page.Text1.text() + " " + page.Text3.text() + " " + page.listenip.text() + " " + page.Text2.text();
  }
  static std::string labels(const ServiceControlPage& page) {
    return page.Label1.caption() + "|" + page.Label2.caption();
  }

  // Why the step of this text failed.
  std::string error_of(std::string_view text) {
    const ActivityRecord& record = console.activity();
    for (std::uint64_t i = record.first(); i < record.total(); ++i) {
      if (record[i].text == text) return std::string(record[i].error);
    }
    return "not recorded";
  }

  test::ServiceEnvironment environment;

 private:
  std::optional<FakeServiceManager> manager_;
};

TEST_F(ServiceControlPageTest, MissingPortsAreStoredWithTheirDefaultsAtOnce) {
  const struct {
    const char* forward;
    const char* listen;
    const char* ports;  // as they were stored
    const char* shown;
  } cases[] = {
      {"", "", "", " 25  25"},  // two empty addresses are not the same one
      {"10.0.0.1", "10.0.0.1", "", "10.0.0.1 26 10.0.0.1 25"},
      {"10.0.0.1", "10.0.0.1", "-1", "10.0.0.1 26 10.0.0.1 25"},
      {"10.0.0.1", "10.0.0.2", "-1", "10.0.0.1 25 10.0.0.2 25"},
      {"10.0.0.1", "", "587", "10.0.0.1 587  587"},
      {"10.0.0.1", "10.0.0.1", "0", "10.0.0.1 0 10.0.0.1 0"},
  };
  for (const auto& [forward, listen, ports, expected] : cases) {
    set_string("forwardaddress", forward);
    set_string("listenip", listen);
    set_string("listenport", ports);
    set_string("forwardport", ports);
    const ServiceControlPage& page = shown();
    EXPECT_EQ(fields(page), expected);
    EXPECT_EQ(option("listenport"), page.Text2.text());
    EXPECT_EQ(option("forwardport"), page.Text3.text());
  }
}

TEST_F(ServiceControlPageTest, SavingTrustsTheMailServerOnceAndStoresAllFields) {
  insert("Blackhost", "IPNumber", {"10.0.0.9"});
  ServiceControlPage& page = shown();
  page.Text1.user_type("10.0.0.9");
  page.listenip.user_type("10.0.0.1");
  page.Text2.user_type("2525");
  page.Text3.user_type("");
  page.Command1.user_click();
  EXPECT_THAT(activity(),
              ElementsAre("set_string forwardaddress=10.0.0.9", "add_to_whitehost 10.0.0.9",
                          "DELETE FROM myips where IPNumber='10.0.0.9'",
                          "INSERT INTO myips (IPNumber) VALUES ('10.0.0.9')", "set_string listenip=10.0.0.1",
                          "DELETE FROM konf where ID='listenport'", "DELETE FROM konf where ID='forwardport'",
                          "set_option listenport=2525", "DELETE FROM konf where ID='forwardport'",
                          "set_option forwardport=25"));
  page.Command1.user_click();
  EXPECT_THAT(rows("myips", "IPNumber"), ElementsAre("10.0.0.9"));
  EXPECT_THAT(rows("Whitehost", "IPNumber"), ElementsAre("10.0.0.9"));
  EXPECT_THAT(rows("Blackhost", "IPNumber"), IsEmpty());
  EXPECT_EQ(fields(shown()), "10.0.0.9 25 10.0.0.1 2525");
}

TEST_F(ServiceControlPageTest, AListeningAddressIsStoredIfItHoldsAnAddress) {
  ServiceControlPage& page = shown();
  std::string stored;
  const struct {
    const char* text;
    bool valid;
  } cases[] = {
      {"10.0.0.1", true},  {"all", false},           {"300.1.1.1", false}, {"on 10.0.0.2:25", true},
      {"10.0.0", false},   {"1.2.3.4.5", true},      {"1.2.3.456", false}, {"010.001.07.255", true},
      {"a1.2.3.4", false}, {"::ffff:1.2.3.4", true}, {"1.2.3.4x", false},  {"", false},
  };
  for (const auto& [text, valid] : cases) {
    if (valid) stored = text;
    page.listenip.user_type(text);
    page.Text2.user_type("26");
    page.Command1.user_click();
    EXPECT_EQ(text_option("listenip"), stored) << text;
    EXPECT_EQ(page.listenip.text(), stored) << text;
    EXPECT_EQ(option("listenport"), "26") << text;
  }
}

TEST_F(ServiceControlPageTest, APortThatIsNoNumberIsAFailedStepAndTheDefaultApplies) {
  for (const char* text : {"smtp", "99999999999", "25;26", " "}) {
    ServiceControlPage& page = shown();
    page.Text2.user_type(text);
    page.Text3.user_type("70000");
    page.Command1.user_click();
    EXPECT_EQ(fields(page), " 70000  25") << text;
    EXPECT_THAT(activity(), Contains("failed: set_option listenport=" + std::string(text)));
  }
}

TEST_F(ServiceControlPageTest, TheOptionOfTheStartSaysTheOppositeOfItsBox) {
  const std::pair<const char*, bool> cases[] = {
      {"", true}, {"0", true}, {"-1", true}, {"1", false}, {"2", false}};
  for (const auto& [stored, checked] : cases) {
    set_string("dontstartproxy", stored);
    EXPECT_EQ(shown().dontstartproxy.checked(), checked) << stored;
  }
  ServiceControlPage& page = shown();
  page.dontstartproxy.user_click();
  EXPECT_EQ(option("dontstartproxy"), "0");
  page.dontstartproxy.user_click();
  EXPECT_EQ(option("dontstartproxy"), "1");
}

TEST_F(ServiceControlPageTest, TheServiceOfTheProductKeyIsShown) {
  manager().add("mirvan.service", true);
  manager().add("acmemail.service", false);
  EXPECT_EQ(labels(shown()), "Service Status: active|Service State: running");

  std::ofstream(folder.path() / "proxy.ini") << "product = AcmeMail\n";
  std::ofstream(folder.path() / "language") << "german";
  Console other(folder.path(), host);
  register_components(other);
  ServiceControlPage page(other);
  page.initialise();
  EXPECT_EQ(labels(page), "Status des Dienstes: inactive|Zustand des Dienstes: dead");
}

TEST_F(ServiceControlPageTest, StartingSetsTheSwitchAndIsWatchedUntilItIsDone) {
  manager().add("mirvan.service", false);
  set_option("dontstartproxy", 1);
  ServiceControlPage& page = shown();
  EXPECT_FALSE(page.Timer1.enabled());
  page.starts.user_click();
  EXPECT_TRUE(page.dontstartproxy.checked());
  EXPECT_THAT(activity(), ElementsAre("set_option dontstartproxy=0", "StartService Mirvan"));
  EXPECT_EQ(labels(page), "Service Status: activating|Service State: start-pre");
  page.Timer1.user_tick();
  EXPECT_TRUE(page.Timer1.enabled());
  manager().finish();
  page.Timer1.user_tick();
  EXPECT_FALSE(page.Timer1.enabled());
  EXPECT_EQ(labels(page), "Service Status: active|Service State: running");
  EXPECT_EQ(page.Label1.tone(), Label::Tone::good);
  EXPECT_FALSE(page.starts.enabled());
  EXPECT_TRUE(page.stopservice.enabled());
  EXPECT_EQ(manager().orders().size(), 1u);
}

TEST_F(ServiceControlPageTest, RestartingStartsWhenTheServiceHasStopped) {
  manager().add("mirvan.service", true);
  ServiceControlPage& page = shown();
  page.rservice.user_click();
  for (int i = 0; i < 3; ++i) page.Timer1.user_tick();
  EXPECT_THAT(manager().orders(), ElementsAre("StopUnit mirvan.service replace"));
  manager().finish();
  page.Timer1.user_tick();
  EXPECT_THAT(activity(), ElementsAre("StopService Mirvan", "StartService Mirvan"));
  EXPECT_EQ(labels(page), "Service Status: activating|Service State: start-pre");
  EXPECT_FALSE(page.Timer1.enabled());

  manager().finish();
  page.rservice.user_click();
  page.stopservice.user_click();  // no start is wanted any more
  manager().finish();
  page.Timer1.user_tick();
  EXPECT_FALSE(page.Timer1.enabled());
  EXPECT_EQ(labels(page), "Service Status: inactive|Service State: dead");
}

TEST_F(ServiceControlPageTest, WhatIsNotThereOrNotPermittedIsToldInTheRecordAlone) {
  ServiceControlPage& page = shown();
  manager();
  page.Command2.user_click();
  EXPECT_EQ(labels(page), "Service Status: |Service State: ");
  EXPECT_EQ(error_of("service_state Mirvan"), "no such service: Mirvan");
  page.rservice.user_click();
  EXPECT_EQ(error_of("StopService Mirvan"), "no such service: Mirvan");
  EXPECT_TRUE(page.Timer1.enabled());
  page.Timer1.user_tick();
  EXPECT_FALSE(page.Timer1.enabled());

  manager().add("mirvan.service", false);
  manager().set_manner(Manner::denying);
  forget_activity();
  page.starts.user_click();
  EXPECT_THAT(error_of("StartService Mirvan"), HasSubstr("no permission"));
  EXPECT_THAT(host.boxes, IsEmpty());
}

TEST_F(ServiceControlPageTest, AManagerThatGoesAwayIsAskedAgainButNotForEver) {
  manager().add("mirvan.service", true);
  ServiceControlPage& page = shown();
  page.rservice.user_click();
  manager().end_bus();
  page.Timer1.user_tick();
  EXPECT_EQ(labels(page), "Service Status: |Service State: ");
  EXPECT_TRUE(page.Timer1.enabled());
  for (int i = 0; i < 50 && page.Timer1.enabled(); ++i) page.Timer1.user_tick();
  EXPECT_FALSE(page.Timer1.enabled());
  EXPECT_THAT(error_of("StartService Mirvan"), HasSubstr("no system bus"));
}

TEST_F(ServiceControlPageTest, WithoutABusTheServiceIsStartedByTheProgram) {
  environment.make_systemctl(
      "case \"$*\" in *show*) printf 'Id=mirvan.service\\nLoadState=loaded\\nActiveState=inactive\\n"
      "SubState=dead\\n';; esac");
  ServiceControlPage& page = shown();
  page.starts.user_click();
  EXPECT_THAT(activity(), ElementsAre("set_option dontstartproxy=0", "StartService Mirvan"));
  EXPECT_EQ(labels(page), "Service Status: inactive|Service State: dead");
  EXPECT_THAT(read_file(environment.calls()), HasSubstr("--no-ask-password start -- mirvan.service\n"));
}

TEST_F(ServiceControlPageTest, TheServiceProgramIsStarted) {
  shown().Command3.user_click();
  ASSERT_EQ(host.programs.size(), 1u);
  EXPECT_EQ(host.programs[0].command_line(), "ProxyServiceControl.exe");
}

TEST_F(ServiceControlPageTest, WithoutAConnectionTheServiceIsStillShown) {
  manager().add("mirvan.service", true);
  console.settings().regwrite_string(console.settings().data_provider_path(), "sqlite:none/proxy.db");
  ServiceControlPage& page = shown();
  EXPECT_EQ(host.boxes.size(), 1u);
  EXPECT_FALSE(page.dontstartproxy.checked());
  EXPECT_EQ(labels(page), "Service Status: active|Service State: running");
  page.Command1.user_click();
  page.terminate();
  EXPECT_EQ(host.boxes.size(), 1u);
}

}  // namespace
}  // namespace zrl
