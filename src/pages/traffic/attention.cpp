#include "pages/traffic/attention.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "core/contracts/last_update.h"
#include "core/text/error.h"
#include "core/text/filled.h"
#include "core/text/paths.h"
#include "core/text/text.h"
#include "pages/traffic/list_search.h"

namespace zrl {

namespace {

using std::chrono::days;
using std::chrono::minutes;
using std::chrono::seconds;

struct Flag {
  std::string_view name;
  std::string_view text;
};
constexpr Flag flags[] = {
    {"reloadblack", "The proxy does not read the changed black lists"},
    {"reloadwhite", "The proxy does not read the changed white lists"},
    {"reloadauto", "The proxy does not read the changed address lists"},
};
constexpr std::int64_t patience = seconds(minutes(1)).count();

constexpr std::int64_t old_update = seconds(days(7)).count();

// What is still in bounds.
constexpr std::uintmax_t gigabyte = std::uintmax_t{1} << 30;
constexpr std::uintmax_t largest_database = 20 * gigabyte;
constexpr std::uintmax_t largest_write_ahead = gigabyte;
constexpr std::int64_t most_archived = 500'000;
constexpr std::uintmax_t least_free = gigabyte;
constexpr std::uintmax_t least_free_share = 20;  // a twentieth of the file system

std::string in_gigabytes(std::uintmax_t bytes) {
  const std::uintmax_t tenths = bytes / (gigabyte / 10);
  return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " GB";
}

std::uintmax_t size_of(const std::filesystem::path& file) {
  std::error_code failure;
  const std::uintmax_t size = std::filesystem::file_size(file, failure);
  return failure ? 0 : size;
}

}  // namespace

std::string_view name_of(Severity severity) {
  static constexpr std::string_view names[] = {"bad", "warning", "unknown"};
  return names[static_cast<std::size_t>(severity)];
}

void Attention::look() {
  findings_.clear();
  first_steps_.clear();
  look_at_service();
  look_at_flags();
  look_at_update();
  look_at_space();
  if (client_.conn) {
    look_at_archive();
    look_at_lists();
  } else {
    find_unreadable("The database", "stati");
  }
  look_at_first_steps();
  // The worst first, otherwise in the order of the questions.
  std::vector<Finding> sorted;
  for (const Severity severity : {Severity::bad, Severity::warning, Severity::unknown}) {
    for (const Finding& finding : findings_) {
      if (finding.severity == severity) sorted.push_back(finding);
    }
  }
  findings_ = std::move(sorted);
}

void Attention::add_unread(const std::vector<std::string_view>& logs) {
  for (const std::string_view log : logs) find_unreadable(log, "stati");
}

void Attention::look_at_service() {
  const std::string name = console_.settings().product_key();
  if (asks_service_) {
    service_.reset();
    asks_service_ = console_.attempt(
        ActivityRecord::Kind::component, "service_state " + name, Console::Step::read,
        [&] { service_ = console_.components().create<ServiceManager>()->inspect(name); }, {},
        Console::Failure::expected);
  }
  if (!service_) return find_unreadable("The proxy's service", "ServiceControl");
  if (service_->status.empty()) {
    find(Severity::warning, filled(translate("There is no service %1"), {name}), "ServiceControl");
  } else if (service_->status != "active" && service_->checkpoint == 0) {
    find(Severity::bad, translate("The proxy is not running: no mail is filtered"), "ServiceControl");
  }
}

void Attention::look_at_flags() {
  for (const Flag& flag : flags) {
    const std::string path = console_.settings().path_of(flag.name);
    if (console_.settings().regread(path) != "1") {
      seen_flags_.erase(path);
      continue;
    }
    const std::int64_t waiting = now() - raised_since(path);
    if (waiting <= patience) continue;
    find(Severity::warning,
         translate(flag.text) + " (" +
             filled(translate("waiting for %1 minutes"), {std::to_string(waiting / 60)}) + ")",
         "ServiceControl");
  }
}

std::int64_t Attention::raised_since(const std::string& path) {
  const std::int64_t seen = seen_flags_.try_emplace(path, now()).first->second;
  const std::optional<std::int64_t> changed = console_.settings().changed_at(path);
  return changed ? std::min(*changed, seen) : seen;
}

void Attention::look_at_update() {
  if (console_.setting("updateurl").empty()) return;  // one of the first steps
  const std::optional<LastUpdate> update = read_last_update(console_.folder());
  if (!update) {
    find(Severity::warning, translate("The lists were never updated from the update server"), "general");
  } else if (!update->problem.empty()) {
    find(Severity::bad, translate("The last update of the lists failed") + ": " + update->problem, "general");
  } else if (now() - update->time > old_update) {
    const std::int64_t age = (now() - update->time) / seconds(days(1)).count();
    find(Severity::warning,
         filled(translate("The last update of the lists was %1 days ago"), {std::to_string(age)}), "general");
  }
}

void Attention::look_at_space() {
  const std::string provider = console_.data_provider();
  constexpr std::string_view embedded = "sqlite:";
  if (provider.starts_with(embedded)) {
    const std::filesystem::path file = console_.folder() / to_file_path(provider.substr(embedded.size()));
    const std::uintmax_t size = size_of(file);
    if (size > largest_database) {
      find(Severity::warning, filled(translate("The database has grown to %1"), {in_gigabytes(size)}),
           "stati");
    }
    const std::uintmax_t ahead = size_of(file.string() + "-wal");
    if (ahead > largest_write_ahead) {
      find(Severity::warning,
           filled(translate("%1 wait to be moved into the database: a program keeps it open for reading"),
                  {in_gigabytes(ahead)}),
           "stati");
    }
  }
  std::error_code failure;
  const std::filesystem::space_info space = std::filesystem::space(console_.folder(), failure);
  if (failure) {
    find_unreadable("The free space of the disk", "stati");
  } else if (space.available < least_free || space.available < space.capacity / least_free_share) {
    find(Severity::bad, filled(translate("Only %1 of the disk are free"), {in_gigabytes(space.available)}),
         "stati");
  }
}

void Attention::look_at_archive() {
  const std::optional<std::int64_t> mails = number_of(Statement("SELECT count(*) AS amount FROM marchive"));
  if (!mails) return find_unreadable("The mail archive", "monitor");
  if (*mails > most_archived) {
    find(Severity::warning, filled(translate("The archive has grown to %1 mails"), {std::to_string(*mails)}),
         "monitor");
  }
}

void Attention::look_at_lists() {
  for (const KnownList& list : known_lists()) {
    const ListSwitch* off = switched_off(client_, list);
    if (off == nullptr) continue;
    const std::optional<bool> used = has_rows(list.table.table);
    if (!used) {
      find_unreadable(list.title, list.page);
    } else if (*used) {
      find(Severity::warning,
           filled(translate("%1: has entries without effect, because \"%2\" is off"),
                  {translate(list.title), translate(off->caption)}),
           list.page);
    }
  }
}

void Attention::look_at_first_steps() {
  const auto step = [&](std::string_view text, std::string_view page, bool done) {
    first_steps_.push_back({translate(text), page, done});
  };
  step("Name the local domains", "localstuff", client_.conn && has_rows("mydomain").value_or(false));
  const auto server = client_.conn ? client_.read_string("forwardaddress") : std::nullopt;
  step("Name the mail server that accepted mail goes to", "ServiceControl", server && !trim(*server).empty());
  step("Set the address of the update server (updateurl in the registry)", "general",
       !console_.setting("updateurl").empty());
  step("Start the proxy", "ServiceControl", service_ && service_->status == "active");
}

void Attention::find(Severity severity, std::string text, std::string_view page) {
  findings_.push_back({severity, std::move(text), page});
}

void Attention::find_unreadable(std::string_view what, std::string_view page) {
  find(Severity::unknown, filled(translate("%1: cannot be read"), {translate(what)}), page);
}

std::string Attention::translate(std::string_view text) {
  return console_.localisation().translate(text);
}

std::optional<bool> Attention::has_rows(Literal table) {
  const auto number =
      number_of("SELECT count(*) AS amount FROM (SELECT 1 FROM " + table + " LIMIT 1) AS one");
  return number ? std::optional(*number > 0) : std::nullopt;
}

std::optional<std::int64_t> Attention::number_of(const Statement& select) {
  std::optional<std::int64_t> result;
  const auto rows = client_.open(select, Connection::Access::read_only);
  if (rows) client_.read_rows(select.text(), [&] { result = rows->number("amount"); });
  return result;
}

std::int64_t Attention::now() const {
  return std::chrono::duration_cast<seconds>(console_.now().time_since_epoch()).count();
}

}  // namespace zrl
