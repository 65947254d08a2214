#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "scripting/vbscript/script_support.h"

// Every script in scripts/ prints what its comments expect: each line behind '=> in turn. An error that
// ends the script is its last line.
namespace zrl::vbs::test {
namespace {

std::vector<std::filesystem::path> all_scripts() {
  std::vector<std::filesystem::path> paths;
  for (const auto& entry : std::filesystem::directory_iterator(SCRIPTS)) paths.push_back(entry.path());
  std::sort(paths.begin(), paths.end());
  return paths;
}

std::string text_of(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

std::vector<std::string> expected_lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    const std::size_t mark = line.find("'=>");
    if (mark == line.npos) continue;
    std::string expected = line.substr(mark + 3);
    if (expected.starts_with(' ')) expected.erase(0, 1);
    lines.push_back(expected);
  }
  return lines;
}

void expect_its_output(const std::string& text) {
  const std::vector<std::string> expected = expected_lines(text);
  const std::vector<std::string> printed = output_of(text, {}, true);
  for (std::size_t i = 0; i < std::min(expected.size(), printed.size()); ++i) {
    EXPECT_EQ(printed[i], expected[i]) << "line " << i + 1 << " of the output";
  }
  EXPECT_EQ(printed.size(), expected.size())
      << (printed.size() > expected.size() ? "unexpected: " + printed[expected.size()] : "output is missing");
}

class ScriptTest : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(ScriptTest, PrintsWhatItExpects) {
  expect_its_output(text_of(GetParam()));
}

// The examples in the document, too.
TEST(DocumentedScriptsTest, PrintWhatTheyExpect) {
  constexpr std::string_view begin = "```vbs\n";
  const std::string document = text_of(DOCUMENT);
  int examples = 0;
  for (std::size_t at = document.find(begin); at != document.npos; at = document.find(begin, at)) {
    at += begin.size();
    SCOPED_TRACE("example " + std::to_string(++examples));
    expect_its_output(document.substr(at, document.find("```", at) - at));
  }
  EXPECT_GE(examples, 4);
}

INSTANTIATE_TEST_SUITE_P(Scripts, ScriptTest, testing::ValuesIn(all_scripts()),
                         [](const auto& test) { return test.param.stem().string(); });

}  // namespace
}  // namespace zrl::vbs::test
