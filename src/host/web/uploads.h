#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "core/contracts/console_folder.h"
#include "host/web/terminal.h"
#include "host/web/transport.h"

namespace zrl::web {

// The file list that a file is sent to, and what the browser calls the file.
struct UploadTarget {
  std::string form;
  std::string control;
  std::string name;
};

// The value of the header Upload-To: the three parts, each percent-encoded, with "/" between them.
std::optional<UploadTarget> parse_upload_target(std::string_view header);

// A safe file name (UTF-8) made of the name that was asked for: without folder, control characters,
// characters that change the writing direction, and dots at either end; neither empty nor too long.
std::string upload_name(std::string_view wanted);

// A file that is being received into the upload folder. The destructor removes it unless keep() succeeded.
class UploadedFile {
 public:
  // `reserved` bytes have been reserved in the file.
  UploadedFile(std::filesystem::path folder, std::filesystem::path temporary, Descriptor file,
               std::uint64_t reserved);
  UploadedFile(const UploadedFile&) = delete;
  UploadedFile& operator=(const UploadedFile&) = delete;
  ~UploadedFile();

  // A failure is reported by keep().
  void write(std::string_view piece);
  std::uint64_t size() const { return size_; }

  // Moves it into the folder, as "name (2).txt" if another file has its name. Returns the name that
  // it got. Raises zrl::Error if it could not be written.
  std::string keep(std::string_view wanted);

 private:
  std::filesystem::path folder_;
  std::filesystem::path temporary_;
  Descriptor file_;
  std::uint64_t reserved_ = 0;
  std::uint64_t size_ = 0;
  int failure_ = 0;
};

// A place for one file that is written for the user's machine alone: a folder of its own, which is removed
// together with the file.
class LeavingFile {
 public:
  explicit LeavingFile(std::filesystem::path path) : path_(std::move(path)) {}
  LeavingFile(const LeavingFile&) = delete;
  LeavingFile& operator=(const LeavingFile&) = delete;
  ~LeavingFile();

  // Nothing is there yet.
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

// The folder `upload` of a console: what browsers sent to it. It is the account's alone, for others who may
// write into it could have files removed, and made, wherever the account may.
class UploadFolder {
 public:
  static constexpr std::uint64_t longest_file = 64 << 20;
  static constexpr std::uint64_t all_files = 512 << 20;
  static constexpr std::chrono::hours kept{7 * 24};

  explicit UploadFolder(const std::filesystem::path& console_folder)
      : path_(console_folder::uploads(console_folder)) {}

  const std::filesystem::path& path() const { return path_; }
  // Whether a file of this size may come: together with those that are there and those that are under way it
  // is within the limit for all files.
  bool has_room_for(std::uint64_t size) const;
  // Makes the folder if need be, and reserves that size, so that files that come at the same time are
  // counted. Raises zrl::Error, also where the folder is a link or somebody else's.
  std::unique_ptr<UploadedFile> receive(std::uint64_t size = 0) const;
  // A place for a file of this name, made safe as that of an upload. Raises zrl::Error as receive() does.
  std::shared_ptr<LeavingFile> leave(std::string_view name) const;
  // Makes the folder, and removes from it what is older than a week, and what broke off. False if the folder
  // cannot be used, because it is a link or somebody else's; then nothing is removed.
  bool sweep() const;

 private:
  std::filesystem::path arriving() const { return path_ / ".arriving"; }
  std::filesystem::path leaving() const { return path_ / ".leaving"; }

  std::filesystem::path path_;
};

// A file that has been received and waits for the session's thread. Its request is answered once; if it is
// destroyed without an answer, the answer is a refusal.
struct PendingUpload {
  UploadTarget target;
  std::unique_ptr<UploadedFile> file;
  Reply reply;  // from any thread
  std::chrono::steady_clock::time_point deadline;

  PendingUpload(UploadTarget where, std::unique_ptr<UploadedFile> what, Reply answer);
  PendingUpload(const PendingUpload&) = delete;
  PendingUpload& operator=(const PendingUpload&) = delete;
  ~PendingUpload();

  void refuse(int status, std::string_view code);
  void accept(std::string_view name);
};

}  // namespace zrl::web
