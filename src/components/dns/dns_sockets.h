#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include <ares.h>

namespace zrl::dns {

// The sockets of a channel, which hold two habits of later releases of c-ares (1.28 and up) off the queries.
// Those releases ask for no name with other characters than those of host names, though policies name such
// (RFC 7208, section 7.3); and one answer that they can't read ends all queries of its socket, whether it
// belongs to any of them or not. With earlier releases this does nothing.
//
// A name that c-ares would refuse is given to it as a stand-in of the same length, which is exchanged for the
// name in the datagrams that leave and come. Over TCP, which c-ares takes to for truncated answers, such a
// query fails.
class DnsSockets {
 public:
  // To be called once, before the first query; this must outlive the channel.
  void attach(ares_channeldata* channel);

  // What c-ares is to be asked for to get `name`, which must be a DNS name without a dot at its end. Should
  // too many names be alike, this is one that c-ares refuses.
  std::string asked_name(const std::string& name);

  // Whether an answer has come for this (as asked_name gave it) and this type that could not be read. c-ares
  // was handed an empty one in its place.
  bool was_malformed(const std::string& asked, int type) const;

 private:
  // Questions stand here as they do in messages (RFC 1035, section 4.1.2).
  struct Question {
    std::string sent;
    std::string asked;
  };

  static ares_socket_t open(int domain, int type, int protocol, void* self);
  static int close(ares_socket_t socket, void* self);
  static int connect(ares_socket_t socket, const sockaddr* address, ares_socklen_t size, void* self);
  static ares_ssize_t receive(ares_socket_t socket, void* data, std::size_t size, int flags, sockaddr* from,
                              ares_socklen_t* from_size, void* self);
  static ares_ssize_t send(ares_socket_t socket, const iovec* parts, int count, void* self);

  ares_ssize_t send_message(ares_socket_t socket, std::string message);
  // Makes of what came what c-ares is to see. False if it answers none of the questions.
  bool admit(std::string& message);

  std::map<std::string, std::string> names_;  // by their stand-ins, both as in messages
  std::map<std::string, Question> sent_;      // by their identifiers, the first two bytes of a message
  std::set<std::string> malformed_;           // questions as asked
  std::set<ares_socket_t> streams_;
};

}  // namespace zrl::dns
