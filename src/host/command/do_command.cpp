#include <boost/json/serialize.hpp>
#include <istream>
#include <limits>
#include <ostream>

#include "core/text/printable.h"
#include "host/command/commands.h"
#include "host/command/report.h"
#include "host/command/step_runner.h"
#include "host/composition.h"
#include "host/folder.h"

namespace zrl::command {

namespace {

// The steps in their order: those of the arguments, and where one is "-" those of `in`, read one
// by one as they are needed.
class StepSource {
 public:
  StepSource(const std::vector<std::string>& arguments, std::istream& in) : arguments_(arguments), in_(in) {
    for (const std::string& argument : arguments_) {
      if (argument != "-") parse_step(argument);  // a badly written step is refused before anything runs
    }
  }

  std::optional<Step> next() {
    while (position_ < arguments_.size()) {
      if (arguments_[position_] != "-") return parse_step(arguments_[position_++]);
      std::string line;
      if (!std::getline(in_, line)) {
        ++position_;
        continue;
      }
      if (line.ends_with('\r')) line.pop_back();
      if (!line.empty()) return parse_step(line);
    }
    return std::nullopt;
  }

 private:
  const std::vector<std::string>& arguments_;
  std::istream& in_;
  std::size_t position_ = 0;
};

const PageEntry& page_entry(const Program& program, const std::string& name) {
  const PageEntry* entry = find_page(program.pages, name);
  if (entry == nullptr) {
    throw UsageError("there is no page \"" + printable(name) + "\"; \"zrlconsole pages\" lists them");
  }
  return *entry;
}

}  // namespace

int run_do(const Arguments& arguments, const Program& program, std::istream& in, std::ostream& out,
           std::ostream& err) {
  const PageEntry& entry = page_entry(program, arguments.page);
  std::optional<StepSource> steps;
  try {
    steps.emplace(arguments.steps, in);
  } catch (const BadStep& bad) {
    throw UsageError(bad.what());
  }
  StepRunner runner([&] { return steps->next(); }, arguments.start_programs);
  Console console(arguments.folder, runner);
  register_components(console);
  if (std::filesystem::exists(arguments.folder)) {
    update_product_version(console);
  } else {
    lay_out_folder(console);
  }
  // The record begins with the showing, and forgets nothing.
  console.activity() = ActivityRecord(std::numeric_limits<std::size_t>::max());

  const std::unique_ptr<Page> page = entry.make(console);
  Report report(console);
  const auto show = [&] {
    page->initialise();
    if (!arguments.query.empty()) page->show_query(arguments.query);
  };
  const bool finished = runner.run(console, *page, show, [&] { report.take_dialogs(runner.windows()); });
  if (finished && arguments.json) {
    out << boost::json::serialize(report.json(*page, runner)) << '\n';
  } else if (finished) {
    report.print(out, *page, runner);
  } else {
    err << "zrlconsole: " << printable(runner.problem()) << '\n';
  }
  page->terminate();
  if (finished) return success;
  return runner.bad_step() ? usage_error : failure;
}

}  // namespace zrl::command
