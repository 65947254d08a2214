#include "core/text/dns_answer.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace zrl {

namespace {

constexpr unsigned cname_type = 5;
constexpr unsigned response_bit = 0x8000;
constexpr unsigned opcode_bits = 0x7800;
constexpr std::size_t most_aliases = 32;

struct Question {
  std::string name;
  unsigned type = 0;
  unsigned record_class = 0;

  bool operator==(const Question&) const = default;
};

Question read_question(DnsFields& fields) {
  Question question;
  question.name = fields.name();
  question.type = fields.number16();
  question.record_class = fields.number16();
  return question;
}

// The name in the question, and all that aliases lead to, which need not stand in their order.
class Owners {
 public:
  explicit Owners(const std::string& name) : names_{name} {}

  void add_alias(std::string owner, std::string target) {
    if (aliases_.size() < most_aliases) aliases_.emplace_back(std::move(owner), std::move(target));
  }
  void follow_aliases() {
    for (std::size_t i = 0; i < names_.size(); ++i) {
      const std::string name = names_[i];
      for (const auto& [owner, target] : aliases_) {
        if (owner == name && !has(target)) names_.push_back(target);
      }
    }
  }
  bool has(const std::string& name) const { return std::ranges::find(names_, name) != names_.end(); }

 private:
  std::vector<std::string> names_;
  std::vector<std::pair<std::string, std::string>> aliases_;
};

}  // namespace

bool is_dns_answer(DnsBytes message, DnsBytes query) {
  if (message.size() < dns_header_size) return false;
  DnsFields header(message, 0);
  const unsigned identifier = header.number16();
  const unsigned flags = header.number16();
  const unsigned questions = header.number16();
  unsigned records = header.number16();
  if (identifier != DnsFields(query, 0).number16() || questions != 1) return false;
  if ((flags & response_bit) == 0 || (flags & opcode_bits) != 0) return false;

  DnsFields asked(query, dns_header_size);
  const Question question = read_question(asked);
  DnsFields fields(message, dns_header_size);
  if (read_question(fields) != question || fields.failed()) return false;

  Owners owners(question.name);
  std::vector<std::string> found;
  for (; records > 0; --records) {
    DnsFields unresolved = fields;
    unresolved.skip_name();
    std::string owner = fields.name();
    if (fields.failed() && !unresolved.failed()) return false;  // not cut off, but pointing nowhere
    const unsigned type = fields.number16();
    fields.skip(6);  // class and time to live
    const unsigned length = fields.number16();
    DnsFields data = fields;
    fields.skip(length);
    if (fields.failed()) break;
    if (type == question.type) {
      if (found.empty() || found.back() != owner) found.push_back(std::move(owner));
    } else if (type == cname_type) {
      owners.add_alias(std::move(owner), data.name());
    }
  }
  owners.follow_aliases();
  return std::ranges::all_of(found, [&](const std::string& owner) { return owners.has(owner); });
}

}  // namespace zrl
