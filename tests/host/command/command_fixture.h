#pragma once

#include <boost/json/parse.hpp>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/command/command_line.h"
#include "support/all_controls_page.h"
#include "support/tables_page.h"
#include "support/temporary_folder.h"

namespace zrl::command {

// Runs command lines in a folder of its own, with the page of all controls beside the product's.
class CommandTest : public testing::Test {
 protected:
  CommandTest() {
    const auto product = page_catalogue();
    pages.assign(product.begin(), product.end());
    pages.push_back({"allcontrols", "Test", "All controls", make_page<test::AllControlsPage>});
    pages.push_back({"tables", "Test", "Tables", make_page<test::TablesPage>});
  }

  int run(std::vector<std::string> arguments, const std::string& input = {}) {
    arguments.insert(arguments.begin(), {"--folder", (folder.path() / "console").string()});
    std::istringstream in(input);
    std::ostringstream out_stream;
    std::ostringstream err_stream;
    const int status = run_command_line(arguments, {pages, {}}, in, out_stream, err_stream);
    out = out_stream.str();
    err = err_stream.str();
    return status;
  }

  // What `do --json PAGE STEP...` prints; the run must succeed.
  boost::json::object run_do(std::vector<std::string> arguments, const std::string& input = {}) {
    arguments.insert(arguments.begin(), {"do", "--json"});
    EXPECT_EQ(run(arguments, input), 0) << err;
    return out.empty() ? boost::json::object() : boost::json::parse(out).as_object();
  }

  test::TemporaryFolder folder;
  std::vector<PageEntry> pages;
  std::string out;
  std::string err;
};

}  // namespace zrl::command
