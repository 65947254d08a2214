#pragma once

#include <filesystem>

#include "scripting/vbscript/engine.h"

namespace zrl {

// The files of one folder and those below it, for scripts to read. A path that leads out of the folder, be it
// by "..", from the root, or through a link, is refused with error 70. Files have at most `largest` bytes.
class FolderScriptFiles final : public vbs::ScriptFiles {
 public:
  static constexpr std::size_t largest = std::size_t{4} << 20;

  explicit FolderScriptFiles(std::filesystem::path folder) : folder_(std::move(folder)) {}

  bool file_exists(const std::string& path) override;
  bool folder_exists(const std::string& path) override;
  std::string contents(const std::string& path) override;

 private:
  // Empty where the path leads out of the folder.
  std::filesystem::path place_of(const std::string& path) const;

  std::filesystem::path folder_;
};

}  // namespace zrl
