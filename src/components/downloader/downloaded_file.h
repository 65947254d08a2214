#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "components/downloader/http_fetcher.h"
#include "core/text/files.h"

namespace zrl::downloader {

// A file that takes its place when it is complete. Its temporary file appears with the first byte and goes
// with this object. Errors name the file without its folder.
class DownloadedFile : public FetchTarget {
 public:
  explicit DownloadedFile(std::filesystem::path path) : path_(std::move(path)) {}

  void write(std::string_view bytes) override;
  // Flushes the file and renames it. The folder is the caller's to flush.
  void complete() override;

 private:
  NewFile& file();

  std::filesystem::path path_;
  std::optional<NewFile> file_;
};

}  // namespace zrl::downloader
