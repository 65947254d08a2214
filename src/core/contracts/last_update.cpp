#include "core/contracts/last_update.h"

#include "core/text/error.h"
#include "core/text/files.h"
#include "core/text/printable.h"
#include "core/text/text.h"
#include "core/text/utf8.h"

namespace zrl {

namespace {

constexpr std::size_t longest_problem = 500;

std::filesystem::path file_in(const std::filesystem::path& folder) {
  return folder / "last-update";
}

}  // namespace

std::optional<LastUpdate> read_last_update(const std::filesystem::path& folder) {
  try {
    const std::string content = read_file(file_in(folder));
    std::string_view text = content;
    const auto time = to_number(take_line(text));
    if (!time) return std::nullopt;
    return LastUpdate{*time, valid_utf8(take_line(text))};
  } catch (const Error&) {
    return std::nullopt;
  }
}

void write_last_update(const std::filesystem::path& folder, const LastUpdate& update) {
  const std::string problem = printable(cut_between_characters(update.problem, longest_problem));
  try {
    replace_file(file_in(folder), std::to_string(update.time) + "\n" + problem + "\n");
  } catch (const Error&) {  // nobody waits for it
  }
}

}  // namespace zrl
