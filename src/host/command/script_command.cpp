#include <fstream>
#include <istream>
#include <iterator>
#include <ostream>
#include <stdexcept>

#include "components/pcre2/pcre2.h"
#include "host/command/commands.h"
#include "scripting/vbscript/engine.h"

namespace zrl::command {

namespace {

// Scripts on a terminal: texts are printed, boxes are answered OK.
class TerminalHost : public vbs::EngineHost {
 public:
  TerminalHost(std::istream& in, std::ostream& out) : in_(in), out_(out) {}

  int msg_box(const std::string& text, int, const std::string&) override {
    out_ << text << '\n';
    return 1;
  }
  std::optional<std::string> input_box(const std::string& text, const std::string&,
                                       const std::string& preset) override {
    out_ << text << '\n';
    std::string line;
    return std::getline(in_, line) ? line : preset;
  }
  void echo(const std::string& text) override { out_ << text << '\n'; }
  std::shared_ptr<RegExp> make_regexp() override { return pcre2::make_regexp(); }

 private:
  std::istream& in_;
  std::ostream& out_;
};

std::string contents_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void print_error(std::ostream& err, const vbs::ScriptError& error) {
  if (!error.name.empty()) err << error.name << '(' << error.line << ", " << error.column << ") ";
  err << error.source << ": " << error.description << '\n';
}

void run_files(const ScriptOptions& options, vbs::Engine& engine, std::ostream& out) {
  const auto mode = options.check ? vbs::Engine::Mode::compile_only : vbs::Engine::Mode::run;
  for (const std::string& file : options.files) engine.add_code(file, contents_of(file), mode);
  if (options.call.size() == 2 && !options.check) {
    out << engine.call(options.call[0], options.call[1]).text << '\n';
  }
}

}  // namespace

int run_script(const ScriptOptions& options, std::istream& in, std::ostream& out, std::ostream& err) {
  TerminalHost host(in, out);
  vbs::Engine engine(host, {}, true);
  int status = 0;
  try {
    run_files(options, engine, out);
  } catch (const vbs::ScriptError& error) {
    out.flush();
    print_error(err, error);
    status = 1;
  } catch (const vbs::ScriptQuit& quit) {
    status = quit.status;
  }
  out.flush();
  return status;
}

}  // namespace zrl::command
