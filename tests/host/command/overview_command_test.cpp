#include "command_fixture.h"

namespace zrl::command {
namespace {

namespace json = boost::json;

TEST_F(CommandTest, AnOverviewIsOfThePeriodThatWasAskedFor) {
  run({"init"});
  for (const auto& [period, labels] : {std::pair("day", 24U), {"week", 7U}, {"month", 30U}}) {
    EXPECT_EQ(run({"overview", "--json", "--period", period}), success) << err;
    const json::object told = json::parse(out).as_object();
    EXPECT_EQ(told.at("period"), period);
    EXPECT_GE(told.at("mails").at("labels").as_array().size(), labels - 1) << period;
    EXPECT_LE(told.at("mails").at("labels").as_array().size(), labels) << period;
  }
  EXPECT_EQ(run({"overview", "--period", "year"}), usage_error);
}

}  // namespace
}  // namespace zrl::command
