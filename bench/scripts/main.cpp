// Runs each program in the script engine and in Lua, in turn, and prints the best times as ratios with
// their goals; then what a call, the loading of scripts, and a whole position cost.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <lua.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include <sys/resource.h>

#include "components/pcre2/pcre2.h"
#include "position.h"
#include "scripting/vbscript/engine.h"

namespace {

using zrl::vbs::Engine;

class BenchHost : public zrl::vbs::EngineHost {
 public:
  int msg_box(const std::string&, int, const std::string&) override { return 1; }
  std::optional<std::string> input_box(const std::string&, const std::string&, const std::string&) override {
    return std::nullopt;
  }
  void echo(const std::string&) override {}
  std::shared_ptr<zrl::RegExp> make_regexp() override { return zrl::pcre2::make_regexp(); }
};

double seconds(const std::function<void()>& action) {
  const auto start = std::chrono::steady_clock::now();
  action();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

std::string contents(const std::string& file) {
  std::ifstream in(std::string(PROGRAMS) + "/" + file, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + file);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

long long run_lua(lua_State* lua) {
  lua_getglobal(lua, "program");
  lua_pushstring(lua, "x");
  if (lua_pcall(lua, 1, 1, 0) != LUA_OK) throw std::runtime_error(lua_tostring(lua, -1));
  const auto result = static_cast<long long>(lua_tonumber(lua, -1));
  lua_pop(lua, 1);
  return result;
}

void compare(const std::string& name, double goal) {
  constexpr int rounds = 5;
  constexpr double shortest_round = 0.2;
  BenchHost host;
  Engine engine(host);
  engine.add_code(name, contents(name + ".vbs"));
  lua_State* lua = luaL_newstate();
  luaL_openlibs(lua);
  if (luaL_dostring(lua, contents(name + ".lua").c_str()) != LUA_OK)
    throw std::runtime_error(lua_tostring(lua, -1));
  long long our_result = 0;
  long long their_result = 0;
  const auto run_ours = [&] { our_result = engine.call("program", "x").number.value_or(-1); };
  const auto run_theirs = [&] { their_result = run_lua(lua); };
  // As often in a row as it takes to make the clock's step and a call's cost nothing beside the work.
  const int repeats = 1 + static_cast<int>(shortest_round / std::max(seconds(run_theirs), 1e-6));
  const auto timed = [&](const auto& run) {
    return seconds([&] {
             for (int i = 0; i < repeats; ++i) run();
           }) /
           repeats;
  };
  double ours = 1e9;
  double theirs = 1e9;
  for (int i = 0; i < rounds; ++i) {
    ours = std::min(ours, timed(run_ours));
    theirs = std::min(theirs, timed(run_theirs));
  }
  lua_close(lua);
  if (our_result != their_result) throw std::runtime_error(name + ": the results differ");
  std::printf("%-12s %8.1f ms   Lua %8.1f ms   ratio %.2f (goal %.1f)\n", name.c_str(), ours * 1e3,
              theirs * 1e3, ours / theirs, goal);
}

void measure_call() {
  BenchHost host;
  Engine engine(host);
  engine.add_code("t", R"(Function check(data)
  Dim score
  score = 0
  If InStr(data, "viagra") > 0 Then
    score = score + 5
  End If
  If Len(data) > 1000 Then
    score = score + 1
  End If
  check = score
End Function)");
  constexpr int calls = 200'000;
  const double time = seconds([&] {
    for (int i = 0; i < calls; ++i) engine.call("check", "HELO mail.example.com");
  });
  std::printf("%-12s %8.2f us (goal 2)\n", "call", time / calls * 1e6);
}

// The same function in both languages: a hundred lines, as scripts of rules have them.
struct RuleTexts {
  std::string ours;
  std::string lua;
};

RuleTexts rule_texts(const std::string& number) {
  RuleTexts texts{"Function script" + number + "(data)\n  Dim parts, i, total\n  total = 0\n",
                  "function script" + number + "(data)\n  local parts, i, total\n  total = 0\n"};
  for (int i = 0; i < 24; ++i) {
    const std::string word = std::to_string(i);
    texts.ours += "  If InStr(1, LCase(data), \"word" + word + "\") > 0 Then\n    total = total + " + word +
                  "\n    parts = parts & \",\" & total\n  End If\n";
    texts.lua += "  if string.find(string.lower(data), \"word" + word +
                 "\", 1, true) then\n    total = total + " + word +
                 "\n    parts = parts .. \",\" .. total\n  end\n";
  }
  texts.ours += "  script" + number + " = total\nEnd Function\n";
  texts.lua += "  return total\nend\n";
  return texts;
}

void load_lua(const std::vector<RuleTexts>& texts) {
  lua_State* lua = luaL_newstate();
  luaL_openlibs(lua);
  for (const RuleTexts& text : texts) {
    if (luaL_dostring(lua, text.lua.c_str()) != LUA_OK) throw std::runtime_error(lua_tostring(lua, -1));
  }
  lua_close(lua);
}

// The goal is above that of running: Lua compiles bytes in one pass, without a tree.
void measure_loading() {
  std::vector<RuleTexts> texts;
  for (int i = 0; i < 100; ++i) texts.push_back(rule_texts(std::to_string(i)));
  BenchHost host;
  Engine engine(host);
  double ours = 1e9;
  double theirs = 1e9;
  for (int round = 0; round < 20; ++round) {
    engine.reset();
    ours = std::min(ours, seconds([&] {
                      for (const RuleTexts& text : texts) engine.add_code("t", text.ours);
                    }));
    theirs = std::min(theirs, seconds([&] { load_lua(texts); }));
  }
  std::printf("%-12s %8.2f ms   Lua %8.2f ms   ratio %.2f (goal 3.0): 100 scripts of 100 lines\n", "loading",
              ours * 1e3, theirs * 1e3, ours / theirs);
}

std::size_t peak_bytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
}

// A text of a million lines; first of all, while nothing else has taken memory.
void measure_compiling() {
  std::string text;
  for (int i = 0; i < 1'000'000; ++i) text += "x = x + 1\n";
  BenchHost host;
  const zrl::vbs::Limits limits;
  Engine engine(host, limits);
  const std::size_t before = peak_bytes();
  const double time = seconds([&] { engine.add_code("t", text, Engine::Mode::compile_only); });
  const std::size_t allowed = std::min(limits.most_memory, text.size() * limits.memory_per_unit);
  std::printf("%-12s %8.0f ms, %zu MB for a million lines (limit %zu MB)\n", "compiling", time * 1e3,
              (peak_bytes() - before) >> 20, allowed >> 20);
}

}  // namespace

int main() {
  try {
    measure_compiling();
    compare("recursion", 1.5);
    compare("loops", 1.5);
    compare("sieve", 1.5);
    compare("strings", 2);
    compare("building", 2);
    compare("dictionary", 2);
    compare("expressions", 2);
    compare("sorting", 2);
    measure_call();
    measure_loading();
    zrl::bench::measure_position();
  } catch (const zrl::vbs::ScriptError& error) {
    std::fprintf(stderr, "%s(%zu): %s\n", error.name.c_str(), error.line, error.description.c_str());
    return 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
  return 0;
}
