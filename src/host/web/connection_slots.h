#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <string>

namespace zrl::web {

// Who may have a connection. There are so many slots in all, and so many for a network (see network_of());
// what is done with a slot decides who gives way when they are all taken: a connection that has not yet sent
// a complete request, or has none under way, to any newer one, the longest waiting first, and then one whose
// answer the client does not take. So clients that hold connections without using them keep nobody out,
// however many addresses they have. On one thread.
class ConnectionSlots {
 public:
  using Clock = std::chrono::steady_clock;

  enum class Use : std::uint8_t {
    waiting,    // for a request, or for the rest of it
    receiving,  // a body that somebody who is signed in sends, piece by piece
    answering,  // the request is complete
    sending,    // the answer
    open,       // a WebSocket of a session
  };

  struct Limits {
    std::size_t slots;
    std::size_t slots_a_network;
    // A connection whose client takes nothing of its answer for so long may have to give way.
    std::chrono::milliseconds patience{2000};
  };

  class Slot;

  explicit ConnectionSlots(const Limits& limits) : limits_(limits) {}
  ConnectionSlots(const ConnectionSlots&) = delete;
  ConnectionSlots& operator=(const ConnectionSlots&) = delete;

  // A slot for a client, which must not outlive this object; null if nobody gives way to it.
  std::unique_ptr<Slot> enter(const std::string& network, Clock::time_point now);

  std::size_t taken() const { return slots_.size(); }

  // A time-out of this length, shortened as the slots fill: whole up to a half, a tenth when all are taken,
  // though not less than `least`.
  std::chrono::milliseconds shortened(std::chrono::milliseconds time, std::chrono::milliseconds least) const;

 private:
  using List = std::list<Slot*>;

  // Frees the slot of whoever has to give way first; of this network, if one is named. False if nobody has
  // to.
  bool free_one(const std::string* network, Clock::time_point now);
  void leave(Slot& slot);

  const Limits limits_;
  List slots_;  // those whose latest use began first come first
  std::map<std::string, std::size_t, std::less<>> by_network_;
};

// A place for one connection, until its end.
class ConnectionSlots::Slot {
 public:
  Slot(ConnectionSlots& slots, std::string network, Clock::time_point now);
  Slot(const Slot&) = delete;
  Slot& operator=(const Slot&) = delete;
  ~Slot() { slots_.leave(*this); }

  // What is done from now on. A use that goes on is set again whenever the client has sent or taken
  // something.
  void use(Use use, Clock::time_point now);
  // Called once when the connection has to give way: it is to be cut. It counts no longer.
  void on_cut(std::function<void()> cut) { cut_ = std::move(cut); }
  bool was_cut() const { return was_cut_; }

  ConnectionSlots& slots() const { return slots_; }

 private:
  friend class ConnectionSlots;

  ConnectionSlots& slots_;
  const std::string network_;
  Use use_ = Use::waiting;
  Clock::time_point since_;
  std::function<void()> cut_;
  bool was_cut_ = false;
  List::iterator place_;
};

}  // namespace zrl::web
