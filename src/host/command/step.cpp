#include "host/command/step.h"

#include "core/text/text.h"

namespace zrl::command {

namespace {

// Takes the ending off `target` if it has one and something is left.
bool take_ending(std::string& target, std::string_view ending) {
  if (!target.ends_with(ending) || target.size() == ending.size()) return false;
  target.resize(target.size() - ending.size());
  return true;
}

}  // namespace

Step parse_step(std::string_view written) {
  Step step;
  step.written = written;
  const std::size_t mark = written.find_first_of("=#");
  step.target = trim(written.substr(0, mark));
  if (step.target.empty()) throw BadStep("a step needs the name of a control: \"" + step.written + "\"");
  if (mark == written.npos) {
    if (take_ending(step.target, ".tick")) {
      step.kind = Step::Kind::tick;
    } else if (take_ending(step.target, ".close")) {
      step.kind = Step::Kind::close;
    }
    return step;
  }
  step.text = written.substr(mark + 1);
  if (written[mark] == '#') {
    const auto index = to_number(step.text);
    if (!index || *index < 0) throw BadStep("not an index from 0: \"" + step.written + "\"");
    step.kind = Step::Kind::item;
    step.index = *index;
  } else if (step.target == "answer") {
    if (step.text != "ok" && step.text != "cancel") throw BadStep("answer is ok or cancel");
    step.kind = Step::Kind::answer;
  } else {
    step.kind = Step::Kind::text;
  }
  return step;
}

TablePart take_table_part(std::string& target) {
  if (take_ending(target, ".key")) return TablePart::key;
  if (take_ending(target, ".sort")) return TablePart::sort;
  if (take_ending(target, ".filter")) return TablePart::filter;
  if (take_ending(target, ".window")) return TablePart::window;
  return TablePart::none;
}

}  // namespace zrl::command
