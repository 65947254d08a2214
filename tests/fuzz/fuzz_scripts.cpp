// Files of published scripts: whatever is in one, a script that is taken has a name that fits into a
// statement, names are given once, and contents are text.
#include <cstdint>
#include <cstdlib>
#include <set>

#include "components/downloader/published_scripts.h"
#include "core/contracts/statement.h"
#include "core/text/error.h"
#include "core/text/utf16.h"
#include "core/text/utf8.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    std::set<std::string> names;
    for (const zrl::downloader::PublishedScript& script :
         zrl::downloader::read_published_scripts({reinterpret_cast<const char*>(data), size})) {
      const bool sound = !script.name.empty() && names.insert(script.name).second &&
                         zrl::insert_into("scriptengine", "scriptname", script.name).fault().empty() &&
                         zrl::is_valid_utf8(script.content) && zrl::is_valid_utf8(script.position) &&
                         zrl::to_utf16_bytes(script.content).size() % 2 == 0;
      if (!sound) std::abort();
    }
  } catch (const zrl::Error&) {  // refused
  }
  return 0;
}
