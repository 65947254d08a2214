#pragma once

#include <filesystem>

#include "core/console.h"
#include "host/command/step_runner.h"
#include "host/composition.h"
#include "host/folder.h"

namespace zrl::command {

// A console on the folder, for commands that show no page.
struct PlainConsole {
  explicit PlainConsole(const std::filesystem::path& folder) : console(folder, host) {
    register_components(console);
  }

  // Lays the folder out if there is none.
  void prepare_folder() {
    if (std::filesystem::exists(console.folder())) {
      update_product_version(console);
    } else {
      lay_out_folder(console);
    }
  }

  StepRunner host{[] { return std::nullopt; }, false};
  Console console;
};

}  // namespace zrl::command
