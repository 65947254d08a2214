#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "components/downloader/http_fetcher.h"
#include "components/downloader/list_content.h"
#include "core/text/files.h"

namespace zrl::downloader {

// A list file that replaces the one under its path when it is complete and its content is that of a list, see
// ListContent. Until then it is a temporary file in the same folder, made by the first byte and removed with
// this object. Errors name the file without its folder.
class DownloadedFile : public FetchTarget {
 public:
  DownloadedFile(std::filesystem::path path, ListKind kind) : path_(std::move(path)), content_(kind) {}

  void write(std::string_view bytes) override;
  // Flushes the file to the disk and renames it. The caller flushes the folder afterwards.
  void complete() override;

 private:
  NewFile& file();

  std::filesystem::path path_;
  ListContent content_;
  std::optional<NewFile> file_;
};

}  // namespace zrl::downloader
