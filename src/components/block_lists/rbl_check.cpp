#include "components/block_lists/block_lists.h"
#include "components/block_lists/domain_name.h"
#include "components/block_lists/zones.h"
#include "core/text/error.h"
#include "core/text/text.h"

namespace zrl::block_lists {

namespace {

// The domain in "mail from: <user@domain> SIZE=100", the angle brackets being optional; empty if there
// is none.
std::string sender_domain(std::string_view command) {
  const std::size_t opening = command.find('<');
  if (opening != command.npos) {
    command.remove_prefix(opening + 1);
    command = command.substr(0, command.rfind('>'));
  }
  const std::size_t at = command.rfind('@');
  if (at == command.npos) return {};
  const std::string_view rest = trim(command.substr(at + 1));
  return domain_name(rest.substr(0, rest.find_first_of(" \t\r\n")));
}

class RblCheck : public BlockLists {
 public:
  explicit RblCheck(ConsoleServices& console) : console_(console) {}

  bool initmodule(const MessageContext& context) override {
    address_ = reversed_address(context.client_address);
    domain_ = sender_domain(context.sender_command);
    zones_.clear();
    white_ = 0;
    if (address_.empty() && domain_.empty()) return false;
    zones_ = read_zones(console_, "wblserver");
    white_ = zones_.size();
    for (std::string& zone : read_zones(console_, "rblserver", most_zones - white_)) {
      zones_.push_back(std::move(zone));
    }
    return true;
  }

  void Value(std::string_view position, Listing& listing, std::string& zone) override {
    listing = Listing::none;
    zone.clear();
    const Listings found(console_, {name_at(position)}, zones_);
    if (!found.answered()) throw Error(error_number::invalid_call, "no block list gave a credible answer");
    for (std::size_t i = 0; i < zones_.size(); ++i) {
      if (!found.has(0, i)) continue;
      listing = i < white_ ? Listing::white : Listing::black;
      zone = zones_[i];
      return;
    }
  }

 private:
  const std::string& name_at(std::string_view position) const {
    if (position == connect && !address_.empty()) return address_;
    if (position == envelope && !domain_.empty()) return domain_;
    throw Error(error_number::invalid_call,
                "nothing to look up is known at the position " + std::string(position));
  }

  ConsoleServices& console_;
  std::string address_;  // reversed
  std::string domain_;
  std::vector<std::string> zones_;  // the white ones first
  std::size_t white_ = 0;
};

}  // namespace

std::shared_ptr<BlockLists> make(ConsoleServices& console) {
  return std::make_shared<RblCheck>(console);
}

}  // namespace zrl::block_lists
