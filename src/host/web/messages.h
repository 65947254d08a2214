#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "core/contracts/entry_search.h"
#include "core/contracts/host.h"
#include "core/text/string_list.h"
#include "host/web/list_order.h"

namespace zrl::web {

struct PendingUpload;

// A well-formed message from the browser (docs/protocol.md). Members that its type does not have are empty or
// 0.
struct BrowserMessage {
  enum class Type : std::uint8_t {
    open,
    event,
    close,
    leave,
    answer,
    rows,
    cells,
    record,
    captions,
    find,  // entries of lists
    language,
    input,  // these and the next are about a terminal
    resize,
    taken,
    end,
    active,  // nothing but that somebody is there
    look,    // for what others have changed
    upload,  // never a message: a file that was sent over HTTP waits among them for its turn
  };
  enum class Act : std::uint8_t { click, type, choose, scroll, remove, keys, sort, filter, fetch, reload };

  // Positions in a view of a list, both included.
  struct Range {
    std::uint64_t first;
    std::uint64_t last;
  };

  Type type{};
  Act act{};
  std::uint64_t seq = 0;      // of those that has_seq()
  std::uint64_t request = 0;  // of rows, cells, record, find
  std::uint64_t id = 0;       // of answer, and of a terminal
  std::uint64_t start = 0;
  std::uint64_t count = 0;
  std::uint64_t position = 0;
  std::uint16_t columns = 0;
  std::uint16_t lines = 0;
  std::int64_t number = 0;  // index or value
  std::string form;
  std::string control;
  std::string page;
  std::string query;  // of open
  std::string text;   // the language, what was typed, the filter or order, or what is sought
  std::optional<EntrySearch::Place> from;  // of find: where it goes on
  ListOrder order = ListOrder::added;
  std::optional<std::uint64_t> sought;     // of rows: the index of a row whose place is asked for,
  std::optional<std::string> sought_text;  // or its text; of cells: its key
  std::uint64_t revision = 0;              // of remove: of the list whose view the ranges are about
  std::vector<Range> ranges;               // ascending, without overlap
  StringList keys;                         // of the rows of a table that are chosen
  BoxReply reply = BoxReply::cancel;
  std::shared_ptr<PendingUpload> upload;

  // Whether a person did something; browsers ask for rows by themselves whenever a list changes.
  bool is_by_person() const {
    return has_seq() || type == Type::answer || type == Type::input || type == Type::end ||
           type == Type::active || type == Type::find;
  }
  bool has_seq() const {
    return type == Type::open || type == Type::event || type == Type::close || type == Type::leave ||
           type == Type::language;
  }
};

// Why a message was not understood, with its number where that could be read.
struct Malformed {
  std::string why;
  std::optional<std::uint64_t> seq;
};

// Parses a message, which may be any bytes. Unknown members are ignored. Raises nothing.
std::variant<BrowserMessage, Malformed> parse_message(std::string_view text);

}  // namespace zrl::web
