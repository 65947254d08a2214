#include "host/web/password_rules.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "core/text/text.h"
#include "core/text/utf8.h"

namespace zrl::web {

namespace {

// Words of which people make passwords, lower-case, without digits.
constexpr std::string_view common_words[] = {
    "abcd",        "access",    "admin",      "administrator", "alexander",  "amanda",     "andrea",
    "andrew",      "angel",     "angels",     "anthony",       "apple",      "arsenal",    "ashley",
    "asdf",        "austin",    "babygirl",   "bailey",        "banana",     "barcelona",  "baseball",
    "basketball",  "batman",    "beautiful",  "benjamin",      "berlin",     "bitte",      "blink",
    "boomer",      "buster",    "butterfly",  "camaro",        "change",     "changeme",   "charlie",
    "cheese",      "chelsea",   "chicken",    "chocolate",     "christian",  "computer",   "console",
    "cookie",      "corvette",  "cowboys",    "daniel",        "daniela",    "default",    "demo",
    "deutschland", "diamond",   "donald",     "dragon",        "eagles",     "elizabeth",  "email",
    "enter",       "family",    "ferrari",    "firewall",      "flower",     "football",   "forever",
    "formula",     "frankfurt", "freedom",    "friend",        "friends",    "fuck",       "fuckyou",
    "gabriel",     "geheim",    "george",     "ginger",        "god",        "golden",     "google",
    "guest",       "hallo",     "hamburg",    "hannah",        "hammer",     "harley",     "heaven",
    "hello",       "hockey",    "hunter",     "iloveyou",      "internet",   "jackson",    "jasmine",
    "jennifer",    "jessica",   "jesus",      "jordan",        "joseph",     "joshua",     "junior",
    "justin",      "kennwort",  "killer",     "kitten",        "lakers",     "letmein",    "linux",
    "liverpool",   "login",     "london",     "love",          "lovely",     "lover",      "loveme",
    "loveyou",     "magic",     "mail",       "mailserver",    "manager",    "manchester", "marina",
    "marlboro",    "martin",    "master",     "matrix",        "matthew",    "maverick",   "melissa",
    "mercedes",    "merlin",    "metallica",  "michael",       "michelle",   "microsoft",  "mickey",
    "midnight",    "monkey",    "monster",    "morgan",        "mother",     "mustang",    "my",
    "naruto",      "nicholas",  "nicole",     "office",        "oliver",     "online",     "orange",
    "pass",        "passion",   "passphrase", "passw",         "passwd",     "password",   "passwort",
    "patrick",     "peanut",    "pepper",     "phoenix",       "player",     "please",     "pokemon",
    "porsche",     "postfix",   "postmaster", "prince",        "princess",   "private",    "purple",
    "qwert",       "rainbow",   "ranger",     "robert",        "root",       "sabrina",    "samantha",
    "samsung",     "schalke",   "schatz",     "scooter",       "secret",     "secure",     "security",
    "server",      "service",   "shadow",     "silver",        "smtp",       "snoopy",     "soccer",
    "sommer",      "spider",    "spiderman",  "starwars",      "steelers",   "summer",     "sunflower",
    "sunshine",    "superman",  "superuser",  "support",       "sweet",      "sysadmin",   "system",
    "teddy",       "temp",      "temporary",  "test",          "tester",     "thomas",     "thunder",
    "tigger",      "trustno",   "tweety",     "unknown",       "user",       "username",   "victoria",
    "vincent",     "welcome",   "whatever",   "william",       "willkommen", "windows",    "winner",
    "winter",      "yamaha",    "yankees",    "yellow",        "you",        "zaq"};

// The long ones among the 10,000 commonest passwords that are not made of the pieces here.
constexpr std::string_view common_passwords[] = {
    "flvbybcnhfnjh",   "ghhh47hj7649",     "ghjcnjgfhjkm", "leavemealone",
    "mailcreated5240", "polniypizdec0211", "sonyericsson", "sojdlg123aljg",
};

// Keys and letters in the order in which they are run through, in both directions.
constexpr std::string_view runs[] = {"01234567890",
                                     "abcdefghijklmnopqrstuvwxyz",
                                     "qwertyuiop",
                                     "qwertzuiop",
                                     "azertyuiop",
                                     "asdfghjkl",
                                     "zxcvbnm",
                                     "yxcvbnm",
                                     "1qaz2wsx3edc4rfv5tgb6yhn7ujm8ik9ol0p",
                                     "q1w2e3r4t5y6u7i8o9p0",
                                     "1q2w3e4r5t6y7u8i9o0p",
                                     "1q2w3e4r5t6z7u8i9o0p"};
constexpr std::size_t shortest_run = 3;
constexpr std::size_t shortest_name = 3;

// What a password is made of: a word, a name or a run costs more than a character around them.
constexpr int piece_cost = 2;
constexpr int character_cost = 1;
constexpr int least_cost = 9;

char letter_of(char character) {
  constexpr std::string_view digits = "013457@$!";
  constexpr std::string_view letters = "oleastasi";
  const std::size_t at = digits.find(character);
  return at == digits.npos ? character : letters[at];
}

std::string as_letters(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), letter_of);
  return result;
}

std::size_t common_beginning(std::string_view a, std::string_view b) {
  return static_cast<std::size_t>(
      std::mismatch(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(std::min(a.size(), b.size())),
                    b.begin())
          .first -
      a.begin());
}

// The length of the longest run or repetition with which the text begins; 0 if it is none.
std::size_t run_at(std::string_view text) {
  std::size_t longest = text.find_first_not_of(text[0]);
  if (longest == text.npos) longest = text.size();
  for (const std::string_view run : runs) {
    const std::string backwards(run.rbegin(), run.rend());
    for (const std::string_view order : {run, std::string_view(backwards)}) {
      for (std::size_t at = 0; at < order.size(); ++at) {
        longest = std::max(longest, common_beginning(text, order.substr(at)));
      }
    }
  }
  return longest < shortest_run ? 0 : longest;
}

bool is_year(std::string_view text) {
  return text.size() >= 4 && (text.starts_with("19") || text.starts_with("20")) &&
         text.substr(2, 2).find_first_not_of("0123456789") == text.npos;
}

// The least that the text costs, of all ways in which it can be put together.
int cost_of(const std::string& text, const std::vector<std::string_view>& names) {
  const std::string letters = as_letters(text);
  std::vector<int> costs(text.size() + 1, static_cast<int>(text.size()) + 1);
  costs[0] = 0;
  const auto reach = [&](std::size_t from, std::size_t length, int cost) {
    int& held = costs[from + length];
    held = std::min(held, costs[from] + cost);
  };
  for (std::size_t at = 0; at < text.size(); ++at) {
    const std::string_view rest = std::string_view(text).substr(at);
    const std::string_view rest_letters = std::string_view(letters).substr(at);
    reach(at, 1, character_cost);
    for (std::size_t length = shortest_run; length <= run_at(rest); ++length) reach(at, length, piece_cost);
    if (is_year(rest)) reach(at, 4, character_cost);
    for (const std::string_view word : common_words) {
      if (rest_letters.starts_with(word)) reach(at, word.size(), piece_cost);
    }
    for (const std::string_view name : names) {
      if (rest.starts_with(name) || rest_letters.starts_with(name)) reach(at, name.size(), piece_cost);
    }
  }
  return costs.back();
}

// The account's name, its parts, and all of them backwards.
std::vector<std::string> names_of(std::string_view account) {
  std::vector<std::string> names{lower(account)};
  std::string part;
  for (const char character : names[0] + " ") {
    if (std::string_view(" .-_@").find(character) == std::string_view::npos) {
      part += character;
    } else {
      names.push_back(std::exchange(part, {}));
    }
  }
  std::erase_if(names, [](const std::string& name) { return name.size() < shortest_name; });
  const std::size_t forwards = names.size();
  for (std::size_t i = 0; i < forwards; ++i) names.emplace_back(names[i].rbegin(), names[i].rend());
  return names;
}

}  // namespace

std::string_view password_fault(std::string_view password, std::string_view account) {
  if (character_count(password) < shortest_password || password.size() > longest_password) {
    return "weak_password";
  }
  const std::vector<std::string> names = names_of(account);
  const std::string text = lower(password);
  if (std::ranges::find(common_passwords, text) != std::end(common_passwords)) return "common_password";
  const int cost = cost_of(text, {names.begin(), names.end()});
  // A word or phrase of the same few characters over and over is no better.
  const std::string doubled = text + text;
  const bool repeats = doubled.find(text, 1) < text.size();
  return cost < least_cost || repeats ? "common_password" : std::string_view();
}

}  // namespace zrl::web
