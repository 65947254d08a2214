#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>

#include "core/contracts/components.h"
#include "core/contracts/host.h"

namespace zrl {

class NameLookup;

// All that a component may ask of its console. Every component is made with one, by zrl::<name>::make() of
// its folder, and may keep the reference: the console outlives its components. All calls belong to the
// console's thread. Tests put a double in its place.
class ConsoleServices {
 public:
  // The console's own folder, an absolute path.
  virtual const std::filesystem::path& folder() const = 0;

  // The registry value of this name under the product key, "updateurl" for example, as text: a number is
  // decimal. Empty if it is not set or cannot be read, the latter being recorded. Read anew at each call.
  // Never throws.
  virtual std::string setting(std::string_view name) = 0;
  // The connection string that databases are opened with.
  std::string data_provider() { return setting("dataprovider"); }

  // The other components. Creating one raises zrl::Error if it is missing.
  virtual ComponentRegistry& components() = 0;
  // The console's look-up of names, made on first use and kept. Raises zrl::Error if it is missing.
  virtual NameLookup& names() = 0;

  // The first part of `text` (UTF-8) that a list entry's regular expression ("REGEX[...]") matches, or empty.
  // Case is ignored. Never throws; failures are recorded.
  virtual std::string regex_match(std::string_view entry, std::string_view text) = 0;

  // Serve the event loop of the host: for this time, or until no event is pending. Handlers run meanwhile:
  // they may call the same component again, and the page that asked may have been left afterwards. What the
  // host raises here ends the component's call, and the component passes it on.
  virtual void wait(std::chrono::milliseconds time) = 0;
  virtual void process_events() = 0;
  // Shows how far a long action has come. The text is copied.
  virtual void show_progress(const Progress& progress) = 0;

  // Records a step that failed when the component goes on without it; a failure that ends the call is raised
  // instead. Both texts are UTF-8 and may quote strangers.
  virtual void record_failure(std::string_view step, std::string_view problem) = 0;

 protected:
  ~ConsoleServices() = default;
};

}  // namespace zrl
