#include "position.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#include "scripting/script_runner.h"
#include "scripting/script_table.h"
#include "support/installed_console.h"

namespace zrl::bench {

namespace {

constexpr int script_count = 100;
constexpr std::string_view input = "HELO mail.example.com";

double seconds(const std::function<void()>& action) {
  const auto start = std::chrono::steady_clock::now();
  action();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

std::string name_of(int script) {
  return "script" + std::to_string(script);
}

std::string text_of(int script) {
  const std::string name = name_of(script);
  return "Function " + name + "(data)\r\n  Dim score\r\n  score = 0\r\n  If InStr(data, \"word" + name +
         "\") > 0 Then\r\n    score = score + 5\r\n  End If\r\n  If Len(data) > 10 Then\r\n    score = score "
         "+ 1\r\n"
         "  End If\r\n  " +
         name + " = score\r\nEnd Function\r\n";
}

// The same functions, called without table, runner and log.
class Bare {
 public:
  explicit Bare(Console& console) : host_(console), engine_(host_) {
    for (int i = 0; i < script_count; ++i) {
      names_.push_back(name_of(i));
      engine_.add_code(names_.back(), text_of(i));
    }
  }

  int call_all() {
    int sum = 0;
    for (const std::string& name : names_) sum += engine_.call(name, input).number.value_or(0);
    return sum;
  }

 private:
  ConsoleScriptHost host_;
  vbs::Engine engine_;
  std::vector<std::string> names_;
};

// What a log of so many lines costs at least, where each of them is appended to the file for itself.
void append_lines(const std::string& file) {
  const std::string line = "20260101000000: script99.CONNECT = 1\n";
  for (int i = 0; i < script_count; ++i) {
    const int fd = ::open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (fd < 0 || ::write(fd, line.data(), line.size()) < 0) throw std::runtime_error("cannot write " + file);
    ::close(fd);
  }
}

}  // namespace

void measure_position() {
  constexpr int rounds = 200;
  test::ScriptTable<test::InstalledConsole> installed;
  installed.create_table();
  for (int i = 0; i < script_count; ++i) installed.put(name_of(i), "CONNECT", i, 1, text_of(i));
  ScriptRunner runner(installed.console);
  runner.load_into_engine(installed.conn, "CONNECT");
  Bare bare(installed.console);
  const std::string log = (installed.folder.path() / "bare.log").string();
  double ours = 1e9;
  double calls = 1e9;
  double lines = 1e9;
  int our_sum = 0;
  int bare_sum = 0;
  for (int i = 0; i < rounds; ++i) {
    ours = std::min(ours, seconds([&] { our_sum = runner.call_all(input, "CONNECT"); }));
    calls = std::min(calls, seconds([&] { bare_sum = bare.call_all(); }));
    lines = std::min(lines, seconds([&] { append_lines(log); }));
  }
  if (our_sum != bare_sum || our_sum != script_count) throw std::runtime_error("call_all: the sums differ");
  std::printf(
      "%-12s %8.3f ms   bare calls %.3f ms, their log lines %.3f ms   ratio to both %.2f (goal 1.5), to the "
      "calls %.1f\n",
      "call_all", ours * 1e3, calls * 1e3, lines * 1e3, ours / (calls + lines), ours / calls);
}

}  // namespace zrl::bench
