#include "host/web/entry_finder.h"

#include <boost/json.hpp>
#include <exception>

#include "core/text/utf8.h"

namespace zrl::web {

namespace {

namespace json = boost::json;

constexpr std::size_t most_hits = 20;
// With what frames it, the answer takes less than 50 milliseconds.
constexpr std::chrono::milliseconds longest_search{40};
// An entry that is longer cannot be told from others by what people see of it.
constexpr std::size_t longest_entry = 1024;

}  // namespace

std::string EntryFinder::message(std::uint64_t request, std::string_view text,
                                 const std::optional<EntrySearch::Place>& from) {
  EntrySearch::Found found;
  try {
    learn();
    found = search_->find(lists_, text, from, most_hits, longest_search);
  } catch (const std::exception&) {
    found = {};  // the pages show that the database cannot be read
  }
  json::array hits;
  for (const EntrySearch::Hit& hit : found.hits) {
    const Shown& shown = shown_[hit.list];
    hits.push_back(json::object{{"page", shown.page},
                                {"control", shown.control},
                                {"frame", valid_utf8(shown.frame)},
                                {"text", beginning_of(hit.entry, longest_entry)}});
  }
  json::object message{
      {"type", "entries"}, {"request", request}, {"text", valid_utf8(text)}, {"hits", std::move(hits)}};
  message["next"] = nullptr;
  if (found.next) message["next"] = json::object{{"list", found.next->list}, {"row", found.next->row}};
  return json::serialize(message);
}

void EntryFinder::learn() {
  if (search_) return;
  lists_.clear();
  shown_.clear();
  for (const PageEntry& entry : pages_) {
    try {
      learn(entry);
    } catch (const std::exception&) {
      continue;  // a page that cannot be made shows no list either
    }
  }
  search_ = console_.components().create<EntrySearch>();
}

void EntryFinder::learn(const PageEntry& entry) {
  const std::unique_ptr<Page> page = entry.make(console_);
  for (const Page::ListPlace& place : page->list_places()) {
    const Frame* frame = place.box->container();
    lists_.push_back(place.list);
    shown_.push_back(
        {entry.name, place.box->name(),
         frame == nullptr ? std::string() : console_.localisation().translate(frame->caption())});
  }
}

}  // namespace zrl::web
