#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace zrl::test {

using DnsMessage = std::vector<std::uint8_t>;

// A DNS server on a loopback port of its own, UDP and TCP, which answers as real servers do: owner names and
// mail exchangers compressed, aliases followed, unknown names with error 3. It runs on a thread; all
// calls may be made while it does.
class FakeDnsServer {
 public:
  // `port` 0: any that is free.
  explicit FakeDnsServer(std::uint16_t port = 0);
  FakeDnsServer(const FakeDnsServer&) = delete;
  FakeDnsServer& operator=(const FakeDnsServer&) = delete;
  ~FakeDnsServer();

  std::uint16_t port() const { return port_; }
  // The text of a resolver file that leads here.
  std::string resolver_file() const;

  // One record, or what to do about a name. Raises std::invalid_argument if it is none of
  //   NAME A|AAAA ADDRESS, NAME MX PREFERENCE NAME, NAME CNAME NAME, NAME TXT TEXT,
  //   NAME|IPV4-ADDRESS PTR NAME, NAME ERROR CODE, NAME SILENT
  void add(std::string_view record);

  struct Manner {
    std::chrono::milliseconds delay{0};
    bool silent = false;
    int lost = 0;  // so many queries more get no answer
    // Sends, before each answer, a false one with another identifier, and one from another port.
    bool lies = false;
    // Datagrams hold so many bytes of an answer and are marked as truncated if it is longer.
    std::size_t room = 65536;
    bool closes_streams = false;  // without an answer
    // What is sent in place of the answer, in a datagram.
    std::function<DnsMessage(DnsMessage answer)> rewrite = {};
    // What is sent before it.
    std::function<DnsMessage(DnsMessage answer)> forge = {};
  };
  void set_manner(Manner manner);

  // "MX example.com", or "TCP MX example.com", in the order of their coming.
  std::vector<std::string> queries() const;

  // The answer to a query by the records, whatever the manner; empty if there is to be none.
  DnsMessage answer(const DnsMessage& query) const;

 private:
  struct Record {
    unsigned type;
    unsigned preference;
    std::string data;  // as it stands in the message, or the name
    bool is_name;
  };
  struct Question {
    std::string name;  // lower case, without a dot at its end
    unsigned type;
  };
  class Socket;
  class Listener;
  class Writer;
  struct Outbox;

  static Question question_of(const DnsMessage& query);
  const std::vector<Record>* records_of(const std::string& name) const;
  DnsMessage compose(const DnsMessage& query, const Question& question) const;
  void serve();
  void receive(Outbox& outbox);
  void answer_stream();
  void note_query(const Question& question, std::string_view by);

  std::unique_ptr<Socket> socket_;
  std::unique_ptr<Listener> listener_;
  std::unique_ptr<Socket> liar_;
  std::uint16_t port_ = 0;
  mutable std::mutex mutex_;  // guards what follows
  std::map<std::string, std::vector<Record>> records_;
  Manner manner_;
  std::vector<std::string> queries_;
  bool stopping_ = false;
  std::thread thread_;
};

}  // namespace zrl::test
