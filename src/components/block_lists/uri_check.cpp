#include <algorithm>

#include "components/block_lists/block_lists.h"
#include "components/block_lists/domain_name.h"
#include "components/block_lists/uri_finder.h"
#include "components/block_lists/zones.h"
#include "core/contracts/name_lookup.h"

namespace zrl::block_lists {

namespace {

constexpr std::size_t longest_answer = 4000;  // bytes; further names are only counted

class UriCheck : public CheckPlugin {
 public:
  explicit UriCheck(ConsoleServices& console) : console_(console) {}

  int info() override { return console_.names().servers().empty() ? 0 : 1; }

  bool initmodule(const MessageContext&) override {
    answer_.clear();
    zones_.clear();
    zones_ = read_zones(console_, "surblserver");
    return !zones_.empty();
  }

  void send(std::string_view, std::string_view, std::string_view text) override {
    answer_.clear();
    if (zones_.empty()) return;
    const FoundNames found = find_names(text, std::min(most_names, most_lookups / zones_.size()));
    if (!found.complete) {
      report(console_, "names in the text",
             "only " + std::to_string(found.names.size()) + " are looked up, the others are left out");
    }
    std::vector<std::string> asked;
    for (const std::string& name : found.names) {
      const std::string reversed = reversed_address(name);
      asked.push_back(reversed.empty() ? name : reversed);
    }
    answer_ = in_words(found.names, Listings(console_, asked, zones_));
  }

  std::string send() const override { return answer_; }

 private:
  std::string in_words(const std::vector<std::string>& names, const Listings& listings) const {
    std::string words;
    std::size_t more = 0;
    for (std::size_t name = 0; name < names.size(); ++name) {
      const std::string zones = zones_that_list(name, listings);
      if (zones.empty()) continue;
      const std::string clause = names[name] + " is listed in " + zones;
      if (words.size() + clause.size() > longest_answer) {
        ++more;
      } else {
        words.append(words.empty() ? "" : "; ").append(clause);
      }
    }
    if (more > 0) words.append(words.empty() ? "" : "; ").append(std::to_string(more) + " more are listed");
    return words;
  }

  std::string zones_that_list(std::size_t name, const Listings& listings) const {
    std::string zones;
    for (std::size_t zone = 0; zone < zones_.size(); ++zone) {
      if (listings.has(name, zone)) zones.append(zones.empty() ? "" : ", ").append(zones_[zone]);
    }
    return zones;
  }

  ConsoleServices& console_;
  std::vector<std::string> zones_;
  std::string answer_;
};

}  // namespace

std::shared_ptr<CheckPlugin> make_uri_check(ConsoleServices& console) {
  return std::make_shared<UriCheck>(console);
}

}  // namespace zrl::block_lists
