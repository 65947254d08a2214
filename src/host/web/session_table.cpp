#include "host/web/session_table.h"

#include <algorithm>
#include <array>

#include <sodium.h>

#include "host/web/random_token.h"

namespace zrl::web {

namespace {

std::string digest(std::string_view token) {
  std::array<unsigned char, crypto_generichash_BYTES> bytes{};
  ::crypto_generichash(bytes.data(), bytes.size(), reinterpret_cast<const unsigned char*>(token.data()),
                       token.size(), nullptr, 0);
  return {bytes.begin(), bytes.end()};
}

}  // namespace

SessionTable::SessionTable(IoLoop& loop, const ConsoleSettings& settings, const Limits& limits,
                           std::function<void(std::string)> on_language)
    : loop_(loop), settings_(settings), limits_(limits), on_language_(std::move(on_language)) {}

std::string SessionTable::begin(const std::string& account) {
  if (stopping_ || !make_room()) return {};
  std::string token = random_token();
  sessions_[digest(token)] = std::make_shared<Session>(
      loop_, settings_, limits_.times, limits_.tabs, account,
      Session::Callbacks{.finished = [this](Session& session) { finished(session); },
                         .language_is = on_language_});
  sweep_later();
  return token;
}

// Sign-ins outlive their tabs, so those that nobody signed out of would fill the table.
bool SessionTable::make_room() {
  if (sessions_.size() + ending_.size() < limits_.sessions) return true;
  const auto long_ago = Session::Clock::now() - limits_.times.lost;
  auto oldest = sessions_.end();
  for (auto it = sessions_.begin(); it != sessions_.end(); ++it) {
    const auto empty = it->second->empty_since();
    if (!empty || *empty > long_ago) continue;
    if (oldest == sessions_.end() || *empty < *oldest->second->empty_since()) oldest = it;
  }
  if (oldest == sessions_.end()) return false;
  expire(oldest, "another one needed its place");
  return true;
}

std::shared_ptr<Session> SessionTable::find(std::string_view token) {
  const auto found = sessions_.find(digest(token));
  if (found == sessions_.end()) return nullptr;
  if (const auto why = found->second->expiry(Session::Clock::now())) {
    expire(found, *why);
    return nullptr;
  }
  return found->second;
}

std::string SessionTable::renew(std::string_view token) {
  const auto found = sessions_.find(digest(token));
  if (found == sessions_.end()) return {};
  std::string renewed = random_token();
  auto entry = sessions_.extract(found);
  entry.key() = digest(renewed);
  sessions_.insert(std::move(entry));
  return renewed;
}

void SessionTable::end(std::string_view token) {
  const auto found = sessions_.find(digest(token));
  if (found != sessions_.end()) leave(found, Session::Reason::over);
}

void SessionTable::end_others(std::string_view account, std::string_view token) {
  const std::string kept = digest(token);
  for (auto it = sessions_.begin(); it != sessions_.end();) {
    const auto next = std::next(it);
    if (it->first != kept && it->second->account() == account) leave(it, Session::Reason::over);
    it = next;
  }
}

void SessionTable::stop(std::function<void()> done) {
  stopping_ = true;
  on_stopped_ = std::move(done);
  // Those that are ending already may be in the middle of a long action.
  for (const auto& session : std::list(ending_)) session->end(Session::Reason::stopping);
  while (!sessions_.empty()) leave(sessions_.begin(), Session::Reason::stopping);
  if (ending_.empty() && on_stopped_) std::exchange(on_stopped_, nullptr)();
}

void SessionTable::sweep_later() {
  if (sweeping_) return;
  sweeping_ = true;
  loop_.after(limits_.sweep, [this] {
    sweeping_ = false;
    sweep();
  });
}

void SessionTable::sweep() {
  const auto now = Session::Clock::now();
  for (auto it = sessions_.begin(); it != sessions_.end();) {
    const auto next = std::next(it);
    if (const auto why = it->second->expiry(now)) {
      expire(it, *why);
    } else {
      it->second->end_lost_tabs(now);
    }
    it = next;
  }
  if (!sessions_.empty()) sweep_later();
}

void SessionTable::expire(Sessions::iterator found, std::string_view why) {
  AuditLog(settings_.audit, found->second->account())
      .note("", "account", "the session has ended: " + std::string(why));
  leave(found, Session::Reason::over);
}

void SessionTable::leave(Sessions::iterator found, Session::Reason reason) {
  const std::shared_ptr<Session> session = std::move(found->second);
  sessions_.erase(found);
  ending_.push_back(session);
  session->end(reason);
}

void SessionTable::finished(const Session& session) {
  ending_.remove_if([&](const std::shared_ptr<Session>& ending) { return ending.get() == &session; });
  if (stopping_ && ending_.empty() && sessions_.empty() && on_stopped_) {
    std::exchange(on_stopped_, nullptr)();
  }
}

}  // namespace zrl::web
