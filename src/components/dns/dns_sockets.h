#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include <ares.h>

namespace zrl::dns {

// The sockets of a channel. Datagrams that are no answer to a query that was sent (is_dns_answer()) never
// reach c-ares, whose releases check less, and it goes on waiting.
//
// They also work around two properties of c-ares from release 1.28 on: it refuses names with characters that
// host names have not, although sender policies use such names (RFC 7208, section 7.3); and one answer that
// it cannot parse ends all queries of its socket.
//
// A name that c-ares would refuse is given to it as a stand-in of the same length, which is replaced by the
// name in outgoing datagrams, and the other way round in incoming ones. Over TCP, which c-ares uses after
// truncated answers, such a query fails.
class DnsSockets {
 public:
  // To be called once, before the first query. This object must outlive the channel.
  void attach(ares_channeldata* channel);

  // The name to give to c-ares in order to look `name` up, which must be a DNS name without a trailing dot.
  // If too many similar names are under way, the result is a name that c-ares refuses.
  std::string asked_name(const std::string& name);

  // Whether an answer to this name (as returned by asked_name()) and type came that could not be parsed.
  // c-ares was given an empty answer in its place.
  bool was_malformed(const std::string& asked, int type) const;

 private:
  // Names are in wire format (RFC 1035, section 4.1.2).
  struct Question {
    std::string sent;
    std::string asked;
    std::string query;  // the whole message that was sent
  };

  static ares_socket_t open(int domain, int type, int protocol, void* self);
  static int close(ares_socket_t socket, void* self);
  static int connect(ares_socket_t socket, const sockaddr* address, ares_socklen_t size, void* self);
  static ares_ssize_t receive(ares_socket_t socket, void* data, std::size_t size, int flags, sockaddr* from,
                              ares_socklen_t* from_size, void* self);
  static ares_ssize_t send(ares_socket_t socket, const iovec* parts, int count, void* self);

  ares_ssize_t send_message(ares_socket_t socket, std::string message);
  // Turns a message that came into the one that c-ares is to see. False if it answers none of the questions.
  bool admit(std::string& message);

  std::map<std::string, std::string> names_;  // by their stand-ins, both as in messages
  std::map<std::string, Question> sent_;      // by their identifiers, the first two bytes of a message
  std::set<std::string> malformed_;           // questions as asked
  std::set<ares_socket_t> streams_;
};

}  // namespace zrl::dns
