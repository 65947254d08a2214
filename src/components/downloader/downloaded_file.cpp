#include "components/downloader/downloaded_file.h"

#include "core/text/error.h"

namespace zrl::downloader {

namespace {

// Errors name the file only; users do not need the path of the folder.
template <typename Step>
void naming(const std::filesystem::path& path, Step step) {
  try {
    step();
  } catch (const Error& failure) {
    raise_file_error(path.filename(), failure.number());
  }
}

}  // namespace

NewFile& DownloadedFile::file() {
  if (!file_) file_.emplace(path_);
  return *file_;
}

void DownloadedFile::write(std::string_view bytes) {
  content_.take(bytes);
  naming(path_, [&] { file().write(bytes); });
}

void DownloadedFile::complete() {
  content_.finish();
  naming(path_, [&] { file().publish(); });
}

}  // namespace zrl::downloader
