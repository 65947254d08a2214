#pragma once

#include <filesystem>

#include "core/console.h"
#include "core/contracts/registry.h"
#include "core/text/printable.h"
#include "host/command/step_runner.h"
#include "host/composition.h"
#include "host/folder.h"

namespace zrl::command {

// A console on the folder, for commands that show no page.
struct PlainConsole {
  explicit PlainConsole(const std::filesystem::path& folder) : console(folder, host) {
    register_components(console);
  }

  std::shared_ptr<Registry> registry() { return console.components().create<Registry>(); }

  // Lays the folder out if there is none.
  void prepare_folder() {
    if (std::filesystem::exists(console.folder())) {
      update_product_version(console);
    } else {
      lay_out_folder(console);
    }
  }

  // Why the last step that failed did.
  std::string last_failure() {
    const ActivityRecord& record = console.activity();
    for (std::uint64_t i = record.total(); i > record.first(); --i) {
      if (!record[i - 1].ok) return printable(record[i - 1].error);
    }
    return "unknown error";
  }

  StepRunner host{[] { return std::nullopt; }, false};
  Console console;
};

}  // namespace zrl::command
