#pragma once

#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "components/dns/sender_lookups.h"
#include "core/text/text.h"

namespace zrl::test {

// The DNS as a list of records, one a line: "example.com MX mail.example.com", "192.0.2.1 PTR NAME". A
// name with the record "ERROR" gets no answer. Lines that are no records do nothing.
class ZoneLookups : public dns::SenderLookups {
 public:
  explicit ZoneLookups(std::string_view records) {
    std::istringstream lines{std::string(records)};
    for (std::string line; std::getline(lines, line);) add(line);
  }

  void add(std::string_view record) {
    std::istringstream words{std::string(record)};
    std::string name;
    std::string type;
    std::string data;
    words >> name >> type >> std::ws;
    std::getline(words, data);
    records_[lower(name) + " " + type].push_back(data);
  }

  // "MX example.com", in their order.
  std::vector<std::string> queries;

  dns::Records<std::string> texts(const std::string& name) override { return ask(name, "TXT"); }
  dns::Records<std::string> exchangers(const std::string& name) override { return ask(name, "MX"); }
  dns::Records<std::string> names_of(const dns::IpAddress& address) override {
    return ask(address.text(), "PTR");
  }
  std::vector<dns::Records<dns::IpAddress>> addresses(const std::vector<std::string>& names,
                                                      dns::IpAddress::Family family) override {
    std::vector<dns::Records<dns::IpAddress>> result;
    for (const std::string& name : names) {
      const dns::Records<std::string> texts = ask(name, family == dns::IpAddress::Family::v4 ? "A" : "AAAA");
      dns::Records<dns::IpAddress>& records = result.emplace_back();
      records.failed = texts.failed;
      for (const std::string& text : texts.found) {
        if (const auto address = dns::IpAddress::parse(text, family)) records.found.push_back(*address);
      }
    }
    return result;
  }

 private:
  dns::Records<std::string> ask(const std::string& name, const std::string& type) {
    queries.push_back(type + " " + name);
    if (records_.contains(lower(name) + " ERROR")) return {{}, true};
    const auto found = records_.find(lower(name) + " " + type);
    if (found == records_.end()) return {};
    return {found->second, false};
  }

  std::map<std::string, std::vector<std::string>> records_;
};

}  // namespace zrl::test
