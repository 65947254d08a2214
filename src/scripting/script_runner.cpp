#include "scripting/script_runner.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "core/text/error.h"
#include "core/text/text.h"
#include "core/text/utf16.h"
#include "core/text/utf8.h"

namespace zrl {

namespace {

constexpr std::string_view connection_box = "No Database Connection Possible (Script Engine COM Control)";

// Of a problem; scripts choose the texts of their errors.
constexpr std::size_t text_limit = 1024;

// Scripts are counted in 16 bits.
constexpr std::int64_t script_limit = std::numeric_limits<std::int16_t>::max();

std::int32_t sum_of(std::int32_t left, std::int32_t right) {
  const std::int64_t sum = std::int64_t{left} + right;
  return std::in_range<std::int32_t>(sum) ? static_cast<std::int32_t>(sum) : left;
}

}  // namespace

// One operation at a time: a box that a script shows may let the user start another.
class ScriptRunner::Turn {
 public:
  Turn(ScriptRunner& runner, std::string_view operation) : runner_(runner), mine_(!runner.in_use_) {
    runner_.in_use_ = true;
    if (mine_) {
      runner_.host_.begin_operation();
    } else {
      runner_.failed(Kind::sql, operation, "a script is still running");
    }
  }
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;
  ~Turn() {
    if (mine_) runner_.in_use_ = false;
  }

  explicit operator bool() const { return mine_; }

 private:
  ScriptRunner& runner_;
  bool mine_;
};

std::string ScriptRunner::Problem::description() const {
  std::string result = script;
  if (line > 0) result += "(" + std::to_string(line) + ", " + std::to_string(column) + ")";
  return result + ": " + text;
}

ScriptRunner::ScriptRunner(Console& console, const vbs::Limits& limits)
    : DatabaseClient(console),
      host_(console),
      script_host_(host_, limits, true),
      log_file_(console.folder() / "Scripts.log") {
  logger_ = component<Logger>();
}

void ScriptRunner::loaddb() {
  const Turn turn(*this, "loaddb");
  if (!turn) return;
  connect_database(connection_box);
  clear();
  begin_transaction();
  load_rows(open("SELECT * FROM scriptengine", Connection::Access::read_only).get());
  drop_database();  // which ends the transaction; it only read
}

void ScriptRunner::load_into_engine(const ConnectionHandle& connection, std::string_view position) {
  const Turn turn(*this, "load_into_engine");
  if (!turn) return;
  current_position_ = upper(position);
  clear();
  conn = connection;
  load_rows(open("SELECT * FROM scriptengine where sposition='" + value(current_position_) +
                     "' or svisible=0 order by prio asc ",
                 Connection::Access::read_only)
                .get());
  drop_database();
}

vbs::ScriptValue ScriptRunner::call_vbs(std::string_view scriptname, std::string_view input) {
  if (!loaded_) loaddb();
  const Turn turn(*this, "call_vbs");
  return turn ? run(scriptname, input) : vbs::ScriptValue();
}

std::int32_t ScriptRunner::call_all(std::string_view input, std::string_view position) {
  const Turn turn(*this, "call_all");
  if (!turn) return 0;
  std::int32_t sum = 0;
  std::int32_t value = 0;
  for (const Script& script : scripts_) {
    if (!equals_ignoring_case(script.position, position)) continue;
    value = result_of(script.name, input).value_or(value);
    sum = sum_of(sum, value);
    log(script.name, value);
  }
  return sum;
}

void ScriptRunner::clear() {
  scripts_.clear();
  problems_.clear();
  script_host_.reset();
}

void ScriptRunner::load_rows(RecordSet* rows) {
  if (rows == nullptr) return;
  const std::int64_t count = std::min(rows->count(), script_limit);
  for (std::int64_t i = 0; i < count; ++i) {
    read_rows("scriptengine", [&] { load_row(*rows); });
    read_rows("scriptengine", [&] { rows->move_next(); });
  }
  if (count > 0) loaded_ = true;
}

void ScriptRunner::load_row(RecordSet& row) {
  const std::string content = from_utf16_bytes(row.bytes("scriptcontent"));
  const Script& script =
      scripts_.emplace_back(Script{std::string(row.text("scriptname")), std::string(row.text("sposition"))});
  script_step("AddCode", script.name, [&] { script_host_.add_code(script.name, content); });
}

vbs::ScriptValue ScriptRunner::run(std::string_view name, std::string_view input) {
  vbs::ScriptValue result;
  script_step("Run", name, [&] { result = script_host_.call(name, input); });
  return result;
}

std::optional<std::int32_t> ScriptRunner::result_of(std::string_view name, std::string_view input) {
  std::optional<std::int32_t> result;
  script_step("Run", name, [&] {
    const vbs::ScriptValue returned = script_host_.call(name, input);
    if (!returned.number) {
      fail({std::string(name), 0, 0, "the result is no whole number of 32 bits"},
           error_number::type_mismatch);
    }
    result = returned.number;
  });
  return result;
}

void ScriptRunner::log(std::string_view name, std::int32_t value) {
  std::string line = console_.time_stamp() + ": ";
  line.append(name).append(".").append(current_position_).append(" = ").append(std::to_string(value));
  last_log_result_ = component_step("proto " + line, [&] {
    if (!logger_) throw Error(error_number::object_not_set, "no logging component");
    if (!logger_->proto(line, log_file_)) {
      throw Error(error_number::invalid_call, std::string(logger_->problem()));
    }
  });
}

bool ScriptRunner::script_step(std::string_view what, std::string_view script,
                               const std::function<void()>& action) {
  const std::string text = std::string(what) + " " + std::string(script);
  return console_.attempt(Kind::component, text, Step::read, [&] {
    try {
      action();
    } catch (const vbs::ScriptError& error) {
      const std::string& name = error.name.empty() ? std::string(script) : error.name;
      fail({name, error.line, error.column, error.description}, error.number);
    } catch (const vbs::ScriptQuit&) {
      fail({std::string(script), 0, 0, "the script wants to quit"}, error_number::invalid_call);
    }
  });
}

void ScriptRunner::fail(Problem problem, int number) {
  problem.text = beginning_of(problem.text, text_limit);
  const std::string description = problem.description();
  if (problems_.size() < problem_limit) problems_.push_back(std::move(problem));
  throw Error(number, description);
}

}  // namespace zrl
