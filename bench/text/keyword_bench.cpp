#include <memory>
#include <random>
#include <string>

#include "components/checks/keyword_search.h"
#include "support/fake_services.h"
#include "text/text_bench.h"

namespace zrl::bench {

namespace {

constexpr std::size_t text_size = 2'000'000;
constexpr std::size_t keyword_count = 100'000;
constexpr std::size_t bare_searches = 100;

// Words of letters as frequent as in English.
std::string word(std::mt19937& source, std::size_t least) {
  static constexpr char letters[] = "eeeeetttaaooiinnsshhrrdlcumwfgypbvk";
  std::string result(least + source() % 8, '\0');
  for (char& c : result) c = letters[source() % (sizeof letters - 1)];
  return result;
}

struct Sample {
  StringList keywords;
  std::string text;
};

// A text without any of the keywords: each of them has a letter that it lacks. A hostile one is made of
// keywords whose ends are cut off.
std::shared_ptr<const Sample> sample(bool hostile) {
  std::mt19937 source(3);
  Sample result;
  for (std::size_t i = 0; i < keyword_count; ++i) {
    const std::string keyword = word(source, 6) + "q" + word(source, 3);
    result.keywords.push_back(keyword);
    if (hostile) result.text += keyword.substr(0, keyword.size() - 1) + " " + keyword.substr(1) + " ";
  }
  while (result.text.size() < text_size) result.text += word(source, 2) + " ";
  result.text.resize(text_size);
  return std::make_shared<const Sample>(std::move(result));
}

volatile std::size_t kept;

Run search(std::shared_ptr<const Sample> sample) {
  return [=] {
    return seconds_of([&] {
      test::FakeServices console;
      kept = checks::KeywordSearch(sample->text, console).find(sample->keywords).size();
    });
  };
}

Run bare_search(std::shared_ptr<const Sample> sample) {
  return [=] {
    return seconds_of([&] {
      for (std::size_t i = 0; i < bare_searches; ++i) kept = sample->text.find(sample->keywords[i]);
    });
  };
}

}  // namespace

// The plain way would take a thousand times as long as what is measured of it.
void add_keywords(Suite& suite) {
  for (const bool hostile : {false, true}) {
    const auto drawn = sample(hostile);
    suite.add(Comparison{
        std::string("100,000 keywords beside 100 plain searches") + (hostile ? ", hostile text" : ""), 1.0,
        search(drawn), bare_search(drawn)});
  }
}

}  // namespace zrl::bench
