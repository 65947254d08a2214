#pragma once

#include <filesystem>
#include <string_view>

#include "components/downloader/http_fetcher.h"

namespace zrl {

// A file that takes its place when it is complete: a temporary file beside it until then, which
// appears with the first byte and goes with this object.
class DownloadedFile : public FetchTarget {
 public:
  explicit DownloadedFile(std::filesystem::path path);
  DownloadedFile(const DownloadedFile&) = delete;
  DownloadedFile& operator=(const DownloadedFile&) = delete;
  ~DownloadedFile() override;

  void write(std::string_view bytes) override;
  // Flushes the file and renames it. The folder is the caller's to flush.
  void complete() override;

  // Removes temporary files that a process left behind when it died.
  static void remove_leftovers(const std::filesystem::path& folder);

 private:
  void open();

  std::filesystem::path path_;
  std::filesystem::path temporary_;
  int fd_ = -1;
};

}  // namespace zrl
