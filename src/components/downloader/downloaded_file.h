#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "components/downloader/http_fetcher.h"
#include "core/text/files.h"

namespace zrl::downloader {

// A file that replaces the one under its path when it is complete. Until then it is a temporary file in the
// same folder, made by the first byte and removed with this object. Errors name the file without its folder.
class DownloadedFile : public FetchTarget {
 public:
  explicit DownloadedFile(std::filesystem::path path) : path_(std::move(path)) {}

  void write(std::string_view bytes) override;
  // Flushes the file to the disk and renames it. The caller flushes the folder afterwards.
  void complete() override;

 private:
  NewFile& file();

  std::filesystem::path path_;
  std::optional<NewFile> file_;
};

}  // namespace zrl::downloader
