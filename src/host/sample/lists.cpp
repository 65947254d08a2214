#include "host/sample/lists.h"

#include <set>

namespace zrl::sample {

namespace {

using std::string_view;

constexpr string_view reserved[] = {"example",     "test",        "invalid",
                                    "example.com", "example.net", "example.org"};
constexpr string_view shady_first[] = {"cheap",  "super",  "best",   "free",  "mega",   "instant",
                                       "lucky",  "hot",    "top",    "quick", "secret", "golden",
                                       "direct", "prime",  "easy",   "vip",   "online", "bulk",
                                       "royal",  "urgent", "global", "true",  "extra",  "daily"};
constexpr string_view shady_second[] = {"pills",   "rates",   "loans",  "casino",  "watches", "offers",
                                        "deals",   "prizes",  "winner", "credit",  "meds",    "software",
                                        "diploma", "stocks",  "dates",  "lottery", "bonus",   "savings",
                                        "mailer",  "traffic", "rx",     "invest",  "jackpot", "discount"};
constexpr string_view decent_first[] = {"garden", "harbour", "north",  "river",  "school", "hill",
                                        "oak",    "bridge",  "market", "meadow", "stone",  "summer",
                                        "valley", "west",    "mill",   "lake"};
constexpr string_view decent_second[] = {"works",  "supply",  "press",  "office", "clinic", "tools",
                                         "books",  "travel",  "studio", "bank",   "energy", "college",
                                         "museum", "kitchen", "rail",   "paper"};
constexpr string_view people[] = {"anna", "ben",   "clara", "david", "emma",  "felix", "greta", "hugo",
                                  "ines", "jonas", "karla", "leo",   "maria", "nils",  "olga",  "paul",
                                  "rosa", "simon", "tina",  "uwe",   "vera",  "willi", "yara",  "zoe"};
constexpr string_view roles[] = {"info",    "sales",   "newsletter", "office",  "support",
                                 "billing", "noreply", "jobs",       "service", "webmaster"};
constexpr string_view local_domains[] = {
    "mirvan.example",    "mail.mirvan.example", "shop.mirvan.example", "mirvan.test",
    "branch-north.test", "branch-south.test",   "branch-west.example", "workshop.example",
    "archive.example",   "school.example.org",  "lists.example.org",   "old-name.example.net"};

// What spam talks about; the keywords are put together from these.
constexpr string_view lures[] = {"cheap",   "free",     "guaranteed", "discount", "online", "genuine",
                                 "instant", "no fee",   "exclusive",  "amazing",  "secret", "limited",
                                 "generic", "approved", "risk free",  "bulk",     "hot",    "hidden",
                                 "herbal",  "100%",     "adult",      "overseas", "cash",   "private"};
constexpr string_view goods[] = {
    "pills",       "pharmacy",      "replica watches", "casino",        "mortgage",    "loan",
    "diploma",     "software",      "weight loss",     "lottery",       "inheritance", "investment",
    "penny stock", "dating",        "hair growth",     "credit repair", "prize",       "work from home",
    "refinance",   "insurance",     "sleeping aid",    "ringtones",     "gift card",   "traffic",
    "toner",       "bank transfer", "pen pal",         "horoscope",     "cruise",      "magazine"};
constexpr string_view urges[] = {"now",         "today",      "tonight",    "order here",
                                 "click below", "act fast",   "last call",  "for you",
                                 "no doctor",   "ships free", "reply soon", "only 24h",
                                 "open now",    "try once",   "join us",    "save 80%"};
constexpr string_view expressions[] = {R"(REGEX[v\W?i\W?t\W?a\W?p\W?i\W?l\W?l])",
                                       R"(REGEX[\b(?:un)?subscribe\s+here\b])",
                                       R"(REGEX[https?://\d{1,3}(?:\.\d{1,3}){3}/])",
                                       R"(REGEX[<\s*script\b[^>]*>])",
                                       R"(REGEX[\$\s?\d{1,3}(?:,\d{3})+])",
                                       R"(REGEX[c[a4]s[i1]n[o0]])",
                                       R"(REGEX[(.)\1{9,}])",
                                       R"(REGEX[dear\s+(?:friend|beneficiary|winner)])"};

constexpr string_view extensions[] = {"ade", "adp", "bat", "chm", "cmd", "com", "cpl", "crt", "dll", "exe",
                                      "hlp", "hta", "inf", "ins", "isp", "jse", "lnk", "msc", "msi", "msp",
                                      "mst", "pif", "reg", "scr", "sct", "shs", "vbe", "vbs", "wsf", "wsh"};
constexpr string_view bait[] = {"invoice", "document", "photo",  "readme", "details",
                                "update",  "password", "letter", "movie",  "card"};
constexpr string_view bait_endings[] = {".exe", ".pif", ".scr", ".doc.exe", ".txt.vbs", ".zip.scr"};
constexpr string_view black_zones[] = {
    "bl.dnsbl.example",           "dul.dnsbl.example",     "relays.dnsbl.example", "proxies.dnsbl.example",
    "exploits.dnsbl.test",        "zombies.dnsbl.test",    "spam.rbl.example.net", "nets.rbl.example.net",
    "combined.abuse.example.org", "cidr.abuse.example.org"};
constexpr string_view white_zones[] = {"white.dnswl.example", "list.bonded.example", "query.trusted.test"};
constexpr string_view uri_zones[] = {"multi.uribl.example", "black.uribl.example", "ws.uribl.test",
                                     "ph.uribl.example.org"};

// What people put on a list by mistake and what attackers would like to see there.
constexpr string_view odd_black_addresses[] = {"Sales@SHOUTING-OFFERS.example",
                                               "<script>alert(1)</script>@evil.invalid",
                                               "\"quoted local\"@evil.invalid",
                                               "=cmd|/c calc!a1@evil.invalid",
                                               "two@signs@evil.invalid",
                                               "\u202egnp.exe@evil.invalid",
                                               "\u0434\u0435\u0448\u0435\u0432\u043e@offers.test",
                                               "x@-;drop table konf;--.invalid"};
constexpr string_view odd_white_addresses[] = {"Office@Garden-Works.example", "no-at-sign.example"};

template <typename Items>
Texts texts(const Items& items) {
  return Texts(std::begin(items), std::end(items));
}

// Different entries, as the maker yields them; those that were taken before are left out.
class Distinct {
 public:
  template <typename Make>
  Texts make(std::size_t count, const Make& make_one) {
    Texts result;
    while (result.size() < count) {
      std::string one = make_one();
      if (taken_.insert(one).second) result.push_back(std::move(one));
    }
    return result;
  }

 private:
  std::set<std::string> taken_;
};

std::string domain(Generator& random, string_view first, string_view second) {
  const string_view separator = random.chance(40) ? "-" : "";
  const std::string number = random.chance(55) ? random.digits(400) : "";
  return join({first, separator, second, number, ".", random.pick_skewed(reserved)});
}

std::string local_part(Generator& random) {
  if (random.chance(20)) return std::string(random.pick(roles));
  std::string result(random.pick(people));
  if (random.chance(50)) result += {'.', static_cast<char>('a' + random.below(26))};
  if (random.chance(40)) result += random.digits(99);
  return result;
}

std::string address_at(Generator& random, const Texts& domains) {
  return join({local_part(random), "@", random.pick_skewed(domains)});
}

// The hosts of the documentation ranges come first, so that they fill the logs; the long lists
// go on with the range that is set aside for benchmarks.
void make_hosts(Generator& random, Lists& lists) {
  Texts documented;
  for (const string_view net : {"192.0.2.", "198.51.100.", "203.0.113."}) {
    for (int host = net == "192.0.2." ? 16 : 1; host < 255; ++host) {
      documented.push_back(join({net, std::to_string(host)}));
    }
  }
  random.shuffle(documented);
  const auto begin = documented.begin();
  lists.black_hosts.assign(begin, begin + 330);
  lists.white_hosts.assign({forward_address});
  lists.white_hosts.insert(lists.white_hosts.end(), begin + 330, begin + 430);
  lists.neutral_hosts.assign(begin + 430, documented.end());

  // An odd factor and a power of two: every address comes up once.
  std::size_t count = 0;
  const auto extend = [&count](Texts& hosts, std::size_t size) {
    while (hosts.size() < size) {
      const std::size_t offset = (++count * 48271) % (std::size_t{1} << 17);
      hosts.push_back(join({"198.", std::to_string(18 + (offset >> 16)), ".",
                            std::to_string(offset >> 8 & 255), ".", std::to_string(offset & 255)}));
    }
  };
  extend(lists.black_hosts, 12000);
  extend(lists.white_hosts, 1500);
  extend(lists.neutral_hosts, 6000);
}

std::string subnet(Generator& random) {
  const std::size_t prefix = 20 + random.below(9);
  const std::size_t net = random.below(std::size_t{1} << 17) >> (32 - prefix) << (32 - prefix);
  return join({"198.", std::to_string(18 + (net >> 16)), ".", std::to_string(net >> 8 & 255), ".",
               std::to_string(net & 255), "/", std::to_string(prefix)});
}

std::string phrase(Generator& random) {
  const std::size_t form = random.below(4);
  if (form == 0) return join({random.pick(goods), " ", random.pick(urges)});
  if (form == 1) return join({random.pick(lures), " ", random.pick(goods)});
  return join({random.pick(lures), " ", random.pick(goods), " ", random.pick(urges)});
}

}  // namespace

std::string shady_domain(Generator& random) {
  const string_view first = random.pick(shady_first);
  return domain(random, first, random.pick(shady_second));
}

std::string decent_domain(Generator& random) {
  const string_view first = random.pick(decent_first);
  return domain(random, first, random.pick(decent_second));
}

Lists make_lists() {
  Generator random(20260901);
  Lists lists;
  make_hosts(random, lists);

  Distinct domains;
  const auto shady = [&] { return shady_domain(random); };
  const Texts black_domains = domains.make(19000, shady);
  const Texts white_domains = domains.make(2460, [&] { return decent_domain(random); });
  const Texts unlisted_domains =
      domains.make(900, [&] { return random.chance(60) ? shady_domain(random) : decent_domain(random); });

  Distinct addresses;
  Texts blackmail = texts(odd_black_addresses);
  lists.black_senders =
      addresses.make(30000 - blackmail.size(), [&] { return address_at(random, black_domains); });
  blackmail.insert(blackmail.end(), lists.black_senders.begin(), lists.black_senders.end());
  lists.unlisted_senders = addresses.make(2500, [&] { return address_at(random, unlisted_domains); });
  Texts whitemail = texts(odd_white_addresses);
  lists.white_senders =
      addresses.make(4000 - whitemail.size(), [&] { return address_at(random, white_domains); });
  whitemail.insert(whitemail.end(), lists.white_senders.begin(), lists.white_senders.end());
  lists.local_users = addresses.make(300, [&] { return address_at(random, texts(local_domains)); });

  // Other pages put addresses, and domains with a mark for "any address of it", among the domains.
  Texts blacklist;
  for (const std::string& name : black_domains) {
    const std::size_t kind = random.below(100);
    blacklist.push_back(kind < 8 ? "@*" + name : kind == 8 ? "*@" + name : name);
  }
  blacklist.insert(blacklist.end(), lists.black_senders.begin(), lists.black_senders.begin() + 1000);
  Texts whitelist = white_domains;
  for (std::size_t i = 0; i < 40; ++i) whitelist.push_back("@*" + white_domains[i * 7]);

  Distinct phrases;
  lists.subject_keywords = phrases.make(900, [&] { return phrase(random); });
  const Texts subject_white =
      phrases.make(150, [&] { return join({"[", random.pick(decent_second), "] ", random.digits(60)}); });
  Distinct words;
  lists.body_keywords = words.make(1200 - std::size(expressions), [&] { return phrase(random); });
  Texts body_words = lists.body_keywords;
  for (const string_view expression : expressions) body_words.emplace_back(expression);

  Distinct subnets;
  const auto one_subnet = [&] { return subnet(random); };
  Texts files;
  for (const string_view name : bait) {
    for (const string_view ending : bait_endings) files.push_back(join({name, ending}));
  }
  const auto first = [](const Texts& from, std::ptrdiff_t offset, std::ptrdiff_t count) {
    return Texts(from.begin() + offset, from.begin() + offset + count);
  };
  lists.tables = {
      {"blacklist", "entry", std::move(blacklist)},
      {"whitelist", "entry", std::move(whitelist)},
      {"Blackhost", "IPNumber", lists.black_hosts},
      {"Whitehost", "IPNumber", lists.white_hosts},
      {"blackmail", "entry", std::move(blackmail)},
      {"whitemail", "entry", std::move(whitemail)},
      {"blacksub", "subnet", subnets.make(400, one_subnet)},
      {"whitesub", "subnet", subnets.make(60, one_subnet)},
      {"swords", "entry", lists.subject_keywords},
      {"words", "entry", std::move(body_words)},
      {"subjectwhite", "entry", subject_white},
      {"mydomain", "entry", texts(local_domains)},
      {"myips",
       "IPNumber",
       {"192.0.2.1", "192.0.2.2", "192.0.2.3", "192.0.2.5", forward_address, listen_address, "192.0.2.11",
        "192.0.2.12"}},
      {"localmail", "entry", lists.local_users},
      {"exceptdomain", "entry", first(white_domains, 100, 25)},
      {"exceptmail", "entry", first(lists.local_users, 20, 15)},
      {"rblserver", "entry", texts(black_zones)},
      {"wblserver", "entry", texts(white_zones)},
      {"surblserver", "entry", texts(uri_zones)},
      {"extension", "extension", texts(extensions)},
      {"files", "files", std::move(files)},
  };
  return lists;
}

}  // namespace zrl::sample
