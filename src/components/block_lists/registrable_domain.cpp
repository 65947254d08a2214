#include "components/block_lists/registrable_domain.h"

#include <algorithm>
#include <functional>

namespace zrl {

namespace {

// The registries right below a country's domain, with blanks between them.
struct Country {
  std::string_view domain;
  std::string_view registries;
};

constexpr Country countries[] = {
    {"ae", "ac co gov net org sch"},
    {"ar", "com edu gob gov int mil net org tur"},
    {"at", "ac co gv or"},
    {"au", "asn com edu gov id net org"},
    {"bd", "ac com edu gov net org"},
    {"bh", "com edu gov net org"},
    {"bo", "com edu gob net org"},
    {"br", "adv art blog com eco edu eng gov ind jus leg mil net org srv tv"},
    {"bw", "ac co gov net org"},
    {"cn", "ac com edu gov mil net org"},
    {"co", "com edu gov mil net nom org"},
    {"cr", "ac co ed fi go or"},
    {"cy", "ac com gov ltd net org"},
    {"do", "com edu gob gov net org web"},
    {"ec", "com edu fin gob gov info net org"},
    {"eg", "com edu gov net org sci"},
    {"es", "com edu gob nom org"},
    {"fr", "asso com gouv nom prd tm"},
    {"ge", "com edu gov net org"},
    {"gh", "com edu gov org"},
    {"gr", "com edu gov net org"},
    {"gt", "com edu gob ind net org"},
    {"hk", "com edu gov idv net org"},
    {"hu", "co info org priv sport tm"},
    {"id", "ac co desa go mil my net or sch web"},
    {"il", "ac co gov idf k12 muni net org"},
    {"in", "ac co edu firm gen gov ind mil net nic org res"},
    {"iq", "com edu gov net org"},
    {"ir", "ac co gov id net org sch"},
    {"it", "edu gov"},
    {"jo", "com edu gov net org sch"},
    {"jp", "ac ad co ed go gr lg ne or"},
    {"ke", "ac co go info me ne or sc"},
    {"kr", "ac co es go hs kg mil ms ne or pe re sc"},
    {"kw", "com edu gov net org"},
    {"kz", "com edu gov net org"},
    {"lb", "com edu gov net org"},
    {"lk", "ac com edu gov net org sch"},
    {"ma", "ac co gov net org press"},
    {"mt", "com edu gov net org"},
    {"mx", "com edu gob net org"},
    {"my", "com edu gov mil name net org"},
    {"mz", "ac co edu gov net org"},
    {"ng", "com edu gov i mil mobi name net org sch"},
    {"ni", "ac co com edu gob net nom org"},
    {"np", "com edu gov mil net org"},
    {"nz", "ac co cri geek gen govt health iwi kiwi maori mil net org parliament school"},
    {"om", "co com edu gov net org"},
    {"pa", "ac com edu gob net nom org"},
    {"pe", "com edu gob mil net nom org"},
    {"ph", "com edu gov i mil net ngo org"},
    {"pk", "biz com edu fam gob gok gop gos gov info net org web"},
    {"pl", "biz com edu gov info mil net org waw"},
    {"pr", "com edu gov info net org"},
    {"pt", "com edu gov int net nome org publ"},
    {"py", "com coop edu gov mil net org"},
    {"qa", "com edu gov mil net org sch"},
    {"ro", "arts com firm info nom org rec store tm www"},
    {"rs", "ac co edu gov in org"},
    {"ru", "ac com edu int msk net org pp spb"},
    {"sa", "com edu gov med net org pub sch"},
    {"sg", "com edu gov net org per"},
    {"sv", "com edu gob org red"},
    {"th", "ac co go in mi net or"},
    {"tn", "com ens fin gov ind info intl net org tourism"},
    {"tr", "av bbs bel biz com dr edu gen gov info k12 mil name net org pol tel tv web"},
    {"tw", "club com ebiz edu game gov idv mil net org"},
    {"tz", "ac co go hotel info me mil mobi ne or sc tv"},
    {"ua", "com dn edu gov in kh kharkov kiev kyiv lviv net od odessa org"},
    {"ug", "ac co com go ne or org sc"},
    {"uk", "ac co gov ltd me net nhs org plc police sch"},
    {"uy", "com edu gub mil net org"},
    {"ve", "co com edu gob gov info mil net org web"},
    {"vn", "ac biz com edu gov health info int name net org pro"},
    {"za", "ac co edu gov law mil net nom org school web"},
    {"zm", "ac co com edu gov net org sch"},
    {"zw", "ac co gov mil org"},
};

bool has_word(std::string_view words, std::string_view word) {
  while (!words.empty()) {
    const std::size_t blank = std::min(words.find(' '), words.size());
    if (words.substr(0, blank) == word) return true;
    words.remove_prefix(std::min(blank + 1, words.size()));
  }
  return false;
}

bool is_registry(std::string_view label, std::string_view country) {
  const auto* found = std::ranges::lower_bound(countries, country, std::less<>(), &Country::domain);
  return found != std::end(countries) && found->domain == country && has_word(found->registries, label);
}

}  // namespace

std::string_view registrable_domain(std::string_view host) {
  const std::size_t last = host.rfind('.');
  if (last == host.npos || last == 0) return {};
  const std::size_t second = host.rfind('.', last - 1);
  const std::size_t begin = second == host.npos ? 0 : second + 1;
  if (!is_registry(host.substr(begin, last - begin), host.substr(last + 1))) return host.substr(begin);
  if (second == host.npos || second == 0) return {};
  const std::size_t third = host.rfind('.', second - 1);
  return host.substr(third == host.npos ? 0 : third + 1);
}

}  // namespace zrl
