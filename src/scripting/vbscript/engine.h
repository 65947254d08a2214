#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/contracts/regexp.h"
#include "scripting/vbscript/host_services.h"
#include "scripting/vbscript/limits.h"

// The script engine: an embedded interpreter of the language "vbscript". All texts here are UTF-8.
namespace zrl::vbs {

struct ScriptError {
  enum class Kind : std::uint8_t { compilation, runtime };
  Kind kind = Kind::runtime;
  std::int32_t number = 0;
  std::string description;
  std::string source;  // as in Err.Source
  std::string name;    // of the text, as given to add_code
  // From 1, columns in 16-bit units; 0 where there is no place. An error in a text that Execute or its kin
  // run stands at the statement that runs it; the description then says where in the text.
  std::size_t line = 0;
  std::size_t column = 0;
};

// What a script asks of its surroundings. Whatever it returns or throws stays with the call.
class EngineHost {
 public:
  virtual ~EngineHost() = default;
  // Returns the number of the button, as the language counts them (1 is OK).
  virtual int msg_box(const std::string& text, int buttons, const std::string& title) = 0;
  // Nothing: cancelled.
  virtual std::optional<std::string> input_box(const std::string& text, const std::string& title,
                                               const std::string& preset) = 0;
  // A line of WScript.Echo.
  virtual void echo(const std::string& text) = 0;
  // A new regular expression; nullptr where there are none.
  virtual std::shared_ptr<RegExp> make_regexp() { return nullptr; }
  // nullptr where there are none; they live as long as the host.
  virtual ScriptFiles* files() { return nullptr; }
  virtual Lookups* lookups() { return nullptr; }
  // A Class_Terminate that a reset or the engine's end set off was stopped for its time.
  virtual void script_stopped(const ScriptError& error) { (void)error; }
};

// A script ended everything with WScript.Quit.
struct ScriptQuit {
  std::int32_t status = 0;
};

// The result of a call.
struct ScriptValue {
  bool is_empty = true;                // Empty or Null
  std::string text;                    // as CStr makes it; empty for objects and arrays
  std::optional<std::int32_t> number;  // as CLng makes it, where it can
};

// One global module, in which all texts share one name space. An engine belongs to one thread at a time.
// After an error it can be used on; only what the failing text had done remains. Functions raise
// ScriptError, and ScriptQuit where a script asks for it.
class Engine {
 public:
  enum class Mode : std::uint8_t { run, compile_only };

  // `with_wscript`: scripts have the object WScript with Echo and Quit.
  explicit Engine(EngineHost& host, const Limits& limits = {}, bool with_wscript = false);
  ~Engine();
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  // Adds a text and runs its top level. A text that does not compile adds nothing. `name` is for errors.
  void add_code(const std::string& name, std::string_view text, Mode mode = Mode::run);
  bool has_procedure(std::string_view name) const;
  // Runs a procedure with one argument, or without where it takes none.
  ScriptValue call(std::string_view name, std::string_view argument);
  // Drops all code, variables and objects; objects run their Class_Terminate.
  void reset();
  // Bytes that scripts hold.
  std::size_t memory_used() const;
  // The code of a procedure, for people who work on the engine.
  std::string disassembly(std::string_view procedure) const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace zrl::vbs
