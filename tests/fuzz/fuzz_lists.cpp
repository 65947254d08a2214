// List files: what the downloader accepts, an import reads. Whatever is in one, an entry is trimmed, no
// comment, not empty, valid UTF-8, one line, and of bounded length; and the file reads the same twice.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

#include "components/downloader/list_content.h"
#include "components/sqlite/list_reader.h"
#include "core/text/error.h"
#include "core/text/text.h"
#include "core/text/utf8.h"

namespace {

std::vector<std::string> entries_of(zrl::sqlite::ListReader& reader) {
  std::vector<std::string> entries;
  std::string_view entry;
  while (reader.next(entry)) {
    const bool sound = !entry.empty() && zrl::trim(entry) == entry && zrl::is_valid_utf8(entry) &&
                       entry.front() != '#' &&
                       entry.find_first_of(std::string_view("\n\0", 2)) == entry.npos &&
                       entry.size() <= 3 * zrl::longest_list_line;
    if (!sound) std::abort();
    entries.emplace_back(entry);
  }
  return entries;
}

// In two pieces, as it may arrive.
bool is_accepted(zrl::ListKind kind, std::string_view bytes) {
  zrl::downloader::ListContent content(kind);
  try {
    content.take(bytes.substr(0, bytes.size() / 2));
    content.take(bytes.substr(bytes.size() / 2));
    content.finish();
  } catch (const zrl::Error&) {
    return false;
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const int file = ::memfd_create("list", 0);
  if (file < 0 || ::write(file, data, size) != static_cast<ssize_t>(size)) std::abort();
  for (const auto kind : {zrl::ListKind::names, zrl::ListKind::domains, zrl::ListKind::texts}) {
    const bool accepted = is_accepted(kind, {reinterpret_cast<const char*>(data), size});
    try {
      zrl::sqlite::ListReader reader("/proc/self/fd/" + std::to_string(file), kind);
      const std::vector<std::string> first = entries_of(reader);
      reader.rewind();
      if (entries_of(reader) != first) std::abort();
    } catch (const zrl::Error&) {
      if (accepted) std::abort();
    }
  }
  ::close(file);
  return 0;
}
