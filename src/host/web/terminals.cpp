#include "host/web/terminals.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <utility>

#include <sys/eventfd.h>
#include <unistd.h>

#include "core/text/error.h"
#include "host/web/confined_program.h"
#include "host/web/outgoing.h"

namespace zrl::web {

namespace {

using std::chrono::milliseconds;

constexpr std::size_t piece = 32 << 10;
// Between two pieces: together they limit a program to about 3 MB a second.
constexpr milliseconds pause{10};
constexpr std::size_t kept_history = 64 << 10;
constexpr milliseconds grace{1000};

int milliseconds_until(std::chrono::steady_clock::time_point then,
                       std::chrono::steady_clock::time_point now) {
  return then <= now ? 0 : static_cast<int>(std::chrono::ceil<milliseconds>(then - now).count());
}

void drop_old(std::string& history) {
  if (history.size() <= 2 * kept_history) return;
  // From the beginning of a line, so that no escape sequence is cut in two.
  const std::size_t cut = history.size() - kept_history;
  const std::size_t line = history.find('\n', cut);
  history.erase(0, line == std::string::npos ? cut : line + 1);
}

}  // namespace

bool Terminals::Open::wants_reading() const {
  return terminal && !drained && (closing || produced - taken < window);
}

Terminals::Terminals(std::filesystem::path folder, TerminalPlaces& places, Send send, Note note)
    : folder_(std::move(folder)),
      places_(places),
      send_(std::move(send)),
      note_(std::move(note)),
      wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      buffer_(piece) {}

Terminals::~Terminals() {
  end_all();
  if (thread_.joinable()) thread_.join();
  for (const auto& [id, typed] : typed_) note_rest(id);
}

void Terminals::end_all() {
  const std::scoped_lock lock(mutex_);
  stopping_ = true;
  for (auto& [id, open] : table_) open.closing = true;
  wake();
}

void Terminals::start(const ProgramStart& program) {
  const std::scoped_lock lock(mutex_);
  if (!wake_) throw Error(error_number::cannot_create_object, "too many files are open");
  if (stopping_) throw Error(error_number::cannot_create_object, "the session has ended");
  TerminalPlaces::Place place = make_room();
  auto terminal = std::make_unique<Terminal>(program, folder_);
  if (!thread_.joinable()) thread_ = std::thread([this] { run(); });
  const std::uint64_t id = ++last_id_;
  Open& open = table_.emplace(id, Open{.place = std::move(place)}).first->second;
  open.title = typed_[id].title = program.command_line();
  open.withheld = confinement_of(program).withheld;
  open.terminal = std::move(terminal);
  tell(terminal_message(id, open.title, true));
  wake();
}

// The oldest terminal whose program has ended gives way; one of another tab stays on view there.
TerminalPlaces::Place Terminals::make_room() {
  std::optional<TerminalPlaces::Place> place = places_.take();
  while (!place) {
    const auto ended =
        std::find_if(table_.begin(), table_.end(), [](const auto& entry) { return !entry.second.terminal; });
    if (ended == table_.end()) {
      throw Error(error_number::cannot_create_object, "too many terminals are open, here and in other tabs");
    }
    tell(gone_message(ended->first));
    note_rest(ended->first);
    typed_.erase(ended->first);
    table_.erase(ended);
    place = places_.take();
  }
  return std::move(*place);
}

void Terminals::connected(std::uint64_t connection) {
  const std::scoped_lock lock(mutex_);
  connection_ = connection;
  for (auto& [id, open] : table_) {
    if (!open.closing) tell_all(id, open);
  }
  wake();
}

void Terminals::tell_all(std::uint64_t id, Open& open) {
  tell(terminal_message(id, open.title, false));
  open.taken = open.produced - open.history.size();
  for (std::size_t at = 0; at < open.history.size(); at += piece) {
    tell(output_message(id, open.taken + at, std::string_view(open.history).substr(at, piece)));
  }
  if (!open.terminal) tell(ended_message(id, *open.end));
}

bool Terminals::type(std::uint64_t id, std::string_view text) {
  std::string passed;
  {
    const std::scoped_lock lock(mutex_);
    const auto found = table_.find(id);
    if (found == table_.end() || !found->second.terminal || found->second.end) return true;
    Open& open = found->second;
    if (open.input.size() + text.size() > most_input) return false;
    std::copy_if(text.begin(), text.end(), std::back_inserter(passed),
                 [&](char byte) { return open.withheld.find(byte) == std::string::npos; });
    open.input += passed;
    wake();
  }
  note_typed(id, passed);
  return true;
}

void Terminals::note_typed(std::uint64_t id, std::string_view text) {
  std::string& line = typed_[id].line;
  for (const char byte : text) {
    const bool ends = byte == '\r' || byte == '\n';
    if (!ends) line += byte;
    if (ends || line.size() >= longest_line) note_rest(id);
  }
}

void Terminals::note_rest(std::uint64_t id) {
  Typed& typed = typed_[id];
  if (!typed.line.empty()) note_(typed.title + ": " + std::exchange(typed.line, {}));
}

void Terminals::resize(std::uint64_t id, std::uint16_t columns, std::uint16_t rows) {
  const std::scoped_lock lock(mutex_);
  const auto found = table_.find(id);
  if (found != table_.end() && found->second.terminal) found->second.terminal->resize(columns, rows);
}

void Terminals::taken(std::uint64_t id, std::uint64_t position) {
  const std::scoped_lock lock(mutex_);
  const auto found = table_.find(id);
  if (found == table_.end()) return;
  Open& open = found->second;
  open.taken = std::clamp(position, open.taken, open.produced);
  wake();
}

void Terminals::close(std::uint64_t id) {
  if (typed_.contains(id)) {
    note_rest(id);
    typed_.erase(id);
  }
  const std::scoped_lock lock(mutex_);
  const auto found = table_.find(id);
  if (found == table_.end()) return;
  if (found->second.terminal) {
    found->second.closing = true;
    wake();
  } else {
    table_.erase(found);
  }
  tell(gone_message(id));
}

void Terminals::wake() {
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = ::write(wake_.get(), &one, sizeof one);
}

void Terminals::run() {
  std::unique_lock lock(mutex_);
  while (!stopping_ || !table_.empty()) {
    Watch watch = what_to_watch();
    lock.unlock();
    ::poll(watch.polled.data(), watch.polled.size(), watch.timeout);
    std::uint64_t woken = 0;
    [[maybe_unused]] const ssize_t length = ::read(wake_.get(), &woken, sizeof woken);
    lock.lock();
    for (const std::uint64_t id : watch.ids) {
      const auto found = table_.find(id);
      if (found == table_.end()) continue;
      serve(id, found->second);
      if (!found->second.terminal && (found->second.closing || stopping_)) table_.erase(found);
    }
    if (stopping_) std::erase_if(table_, [](const auto& entry) { return !entry.second.terminal; });
  }
}

Terminals::Watch Terminals::what_to_watch() {
  Watch watch;
  watch.polled.push_back({.fd = wake_.get(), .events = POLLIN, .revents = 0});
  const Clock::time_point now = Clock::now();
  Clock::time_point next = Clock::time_point::max();
  for (auto& [id, open] : table_) {
    if (!open.terminal) continue;
    short events = open.input.empty() ? short{0} : short{POLLOUT};
    if (open.wants_reading()) {
      if (open.next_read <= now) {
        events |= POLLIN;
      } else {
        next = std::min(next, open.next_read);
      }
    }
    if (open.closing) next = std::min(next, open.next_step);
    watch.ids.push_back(id);
    // One that nothing is wanted of is left out: a hang-up would be reported again and again.
    const bool listens = events != 0 && !open.drained;
    watch.polled.push_back(
        {.fd = listens ? open.terminal->descriptor() : -1, .events = events, .revents = 0});
    watch.polled.push_back(
        {.fd = open.end ? -1 : open.terminal->process_descriptor(), .events = POLLIN, .revents = 0});
  }
  if (next != Clock::time_point::max()) watch.timeout = milliseconds_until(next, now);
  return watch;
}

void Terminals::serve(std::uint64_t id, Open& open) {
  if (!open.terminal) return;
  const Clock::time_point now = Clock::now();
  if (!open.input.empty()) open.input.erase(0, open.terminal->write(open.input));
  if (!open.end) open.end = open.terminal->end();
  if (open.wants_reading() && open.next_read <= now) pass_output(id, open);
  if (open.closing) end_by_force(open, now);
  if (!open.terminal || !open.end || (!open.drained && !open.closing)) return;
  open.terminal.reset();
  open.input = {};
  if (!open.closing) tell(ended_message(id, *open.end));
}

void Terminals::end_by_force(Open& open, Clock::time_point now) {
  if (open.end || open.next_step > now) return;
  open.next_step = now + grace;
  switch (open.step) {
    case Closing::ask:
      open.terminal->hang_up();
      open.step = Closing::kill;
      break;
    case Closing::kill:
      open.terminal->kill();
      open.step = Closing::leave;
      break;
    case Closing::leave:  // it can't even be killed
      open.terminal.reset();
      break;
  }
}

void Terminals::pass_output(std::uint64_t id, Open& open) {
  std::size_t size = std::min(piece, open.closing ? piece : window - (open.produced - open.taken));
  const Terminal::Read result = open.terminal->read(buffer_.data(), size);
  // Of a program that has ended there is nothing to come when nothing is there.
  open.drained = result == Terminal::Read::over || (result == Terminal::Read::nothing && open.end);
  if (size == 0) return;
  open.next_read = Clock::now() + pause;
  if (open.closing) return;
  const std::string_view output(buffer_.data(), size);
  tell(output_message(id, open.produced, output));
  open.history += output;
  open.produced += size;
  drop_old(open.history);
}

}  // namespace zrl::web
