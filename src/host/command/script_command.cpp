#include <filesystem>
#include <fstream>
#include <istream>
#include <iterator>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <thread>

#include "components/pcre2/pcre2.h"
#include "core/text/error.h"
#include "host/command/commands.h"
#include "host/composition.h"
#include "scripting/console_lookups.h"
#include "scripting/folder_script_files.h"
#include "scripting/vbscript/engine.h"
#include "scripting/vbscript/source_text.h"

namespace zrl::command {

namespace {

// The console behind a script that asks its look-ups. Nobody is there to answer boxes, and nothing waits.
class SilentHost final : public Host {
 public:
  BoxReply message_box(const MessageBox&) override { return BoxReply::cancel; }
  bool allows_modeless() const override { return false; }
  void show(Form&) override {}
  void process_events() override {}
  void wait(std::chrono::milliseconds time) override { std::this_thread::sleep_for(time); }
  void start_program(const ProgramStart& program) override {
    throw Error(error_number::invalid_call, program.program + " is not started by scripts");
  }
  void offer_file(const std::filesystem::path&) override {}
  void open_page(std::string_view, std::string_view) override {}
  void show_progress(const Progress&) override {}
};

struct LookupConsole {
  explicit LookupConsole(const std::filesystem::path& folder) : console(folder, host), lookups(console) {
    register_components(console);
  }

  SilentHost host;
  Console console;
  ConsoleLookups lookups;
};

void print_error(std::ostream& err, const vbs::ScriptError& error) {
  if (!error.name.empty()) err << error.name << '(' << error.line << ", " << error.column << ") ";
  err << error.source << ": " << error.description << '\n';
}

// Scripts on a terminal: texts are printed, boxes are answered OK. They read files beside the first of them.
class TerminalHost : public vbs::EngineHost {
 public:
  TerminalHost(const ScriptOptions& options, std::istream& in, std::ostream& out, std::ostream& err)
      : options_(options),
        in_(in),
        out_(out),
        err_(err),
        files_(std::filesystem::absolute(options.files.front()).parent_path()) {}

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
  vbs::ScriptFiles* files() override { return &files_; }
  // Made when it is asked: most scripts need no console, and none is laid out for them.
  vbs::Lookups* lookups() override {
    if (!console_) console_ = std::make_unique<LookupConsole>(options_.folder);
    return &console_->lookups;
  }
  void script_stopped(const vbs::ScriptError& error) override {
    print_error(err_, error);
    stopped_ = true;
  }
  bool stopped() const { return stopped_; }

 private:
  const ScriptOptions& options_;
  std::istream& in_;
  std::ostream& out_;
  std::ostream& err_;
  FolderScriptFiles files_;
  std::unique_ptr<LookupConsole> console_;
  bool stopped_ = false;
};

std::string contents_of(const std::string& path, std::ostream& err) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path);
  const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  vbs::SourceText source = vbs::read_source(bytes);
  if (source.by_code_page) err << path << ": not in UTF-8; read as Windows-1252\n";
  return std::move(source.text);
}

void run_files(const ScriptOptions& options, vbs::Engine& engine, std::ostream& out, std::ostream& err) {
  const auto mode = options.check ? vbs::Engine::Mode::compile_only : vbs::Engine::Mode::run;
  for (const std::string& file : options.files) engine.add_code(file, contents_of(file, err), mode);
  if (options.call.size() == 2 && !options.check) {
    out << engine.call(options.call[0], options.call[1]).text << '\n';
  }
}

}  // namespace

int run_script(const ScriptOptions& options, std::istream& in, std::ostream& out, std::ostream& err) {
  TerminalHost host(options, in, out, err);
  int status = 0;
  {
    vbs::Engine engine(host, {}, true);
    try {
      run_files(options, engine, out, err);
    } catch (const vbs::ScriptError& error) {
      out.flush();
      print_error(err, error);
      status = 1;
    } catch (const vbs::ScriptQuit& quit) {
      status = quit.status;
    }
  }  // what is left ends here, and may run
  out.flush();
  return host.stopped() && status == 0 ? 1 : status;
}

}  // namespace zrl::command
