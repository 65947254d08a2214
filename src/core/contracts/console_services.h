#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>

#include "core/contracts/components.h"
#include "core/contracts/host.h"

namespace zrl {

class NameLookup;

// What a component may ask of the console that it works for. Every component is made with one; it
// outlives the component. All calls belong to the console's thread.
class ConsoleServices {
 public:
  // The console's own folder, an absolute path or one below the working folder.
  virtual const std::filesystem::path& folder() const = 0;

  // The registry value of this name under the product key, "updateurl" say, as text: a number is
  // decimal. Empty if it is not set or cannot be read. Never throws.
  virtual std::string setting(std::string_view name) = 0;
  // The connection string that databases are opened with.
  std::string data_provider() { return setting("dataprovider"); }

  // The other components. Creating one raises zrl::Error where it is missing.
  virtual ComponentRegistry& components() = 0;
  // The console's look-up of names, made on first use. Raises zrl::Error where it is missing.
  virtual NameLookup& names() = 0;

  // The part of `text` that a list entry's regular expression ("REGEX[...]") matches first, or empty.
  // Never throws; what fails is recorded.
  virtual std::string regex_match(std::string_view entry, std::string_view text) = 0;

  // Serve the event loop of the host: for this time, or until nothing waits. Handlers run meanwhile, and
  // the page that asked may be gone afterwards.
  virtual void wait(std::chrono::milliseconds time) = 0;
  virtual void process_events() = 0;
  virtual void show_progress(const Progress& progress) = 0;

  // Puts a step that failed, and that the caller goes on without, into the activity record. UTF-8;
  // both may quote strangers.
  virtual void record_failure(std::string_view step, std::string_view problem) = 0;

 protected:
  ~ConsoleServices() = default;
};

}  // namespace zrl
