#include "host/web/connection_slots.h"

#include <algorithm>
#include <utility>

namespace zrl::web {

using std::chrono::milliseconds;

std::unique_ptr<ConnectionSlots::Slot> ConnectionSlots::enter(const std::string& network,
                                                              Clock::time_point now) {
  const auto held = by_network_.find(network);
  const bool network_is_full = held != by_network_.end() && held->second >= limits_.slots_a_network;
  if (network_is_full && !free_one(&network, now)) return nullptr;
  if (slots_.size() >= limits_.slots && !free_one(nullptr, now)) return nullptr;
  return std::make_unique<Slot>(*this, network, now);
}

milliseconds ConnectionSlots::shortened(milliseconds time, milliseconds least) const {
  const double filled = static_cast<double>(slots_.size()) / static_cast<double>(limits_.slots);
  const double part = filled <= 0.5 ? 1.0 : std::max(0.1, 1.0 - (filled - 0.5) * 1.8);
  const milliseconds wanted(static_cast<milliseconds::rep>(static_cast<double>(time.count()) * part));
  return std::min(time, std::max(least, wanted));
}

bool ConnectionSlots::free_one(const std::string* network, Clock::time_point now) {
  const auto first = [&](auto gives_way) {
    return std::find_if(slots_.begin(), slots_.end(), [&](const Slot* slot) {
      return (network == nullptr || slot->network_ == *network) && gives_way(*slot);
    });
  };
  auto found = first([](const Slot& slot) { return slot.use_ == Use::waiting; });
  if (found == slots_.end()) {
    found = first(
        [&](const Slot& slot) { return slot.use_ == Use::sending && now - slot.since_ >= limits_.patience; });
  }
  if (found == slots_.end()) return false;
  Slot& slot = **found;
  leave(slot);
  slot.was_cut_ = true;
  if (const auto cut = std::exchange(slot.cut_, nullptr)) cut();
  return true;
}

void ConnectionSlots::leave(Slot& slot) {
  if (slot.was_cut_) return;
  slots_.erase(slot.place_);
  const auto found = by_network_.find(slot.network_);
  if (--found->second == 0) by_network_.erase(found);
}

ConnectionSlots::Slot::Slot(ConnectionSlots& slots, std::string network, Clock::time_point now)
    : slots_(slots), network_(std::move(network)), since_(now) {
  place_ = slots_.slots_.insert(slots_.slots_.end(), this);
  ++slots_.by_network_[network_];
}

void ConnectionSlots::Slot::use(Use use, Clock::time_point now) {
  use_ = use;
  since_ = now;
  if (!was_cut_) slots_.slots_.splice(slots_.slots_.end(), slots_.slots_, place_);
}

}  // namespace zrl::web
