#pragma once

#include <filesystem>

#include "scripting/vbscript/engine.h"

namespace zrl {

// The files in one folder and in its sub-folders, for scripts to read. A path that leads out of the folder
// (by "..", from the root, or through a symbolic link) does not exist to the questions, and contents()
// refuses it with error 70. A folder that is missing has no files. Contents are any bytes, `largest` at most;
// a larger file is refused with error 7.
class FolderScriptFiles final : public vbs::ScriptFiles {
 public:
  static constexpr std::size_t largest = std::size_t{4} << 20;  // bytes

  explicit FolderScriptFiles(std::filesystem::path folder) : folder_(std::move(folder)) {}

  bool file_exists(const std::string& path) override;
  bool folder_exists(const std::string& path) override;
  std::string contents(const std::string& path) override;

 private:
  // The absolute path, links resolved; empty where the path leads out of the folder.
  std::filesystem::path place_of(const std::string& path) const;

  std::filesystem::path folder_;
};

}  // namespace zrl
