#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

// Whole files: read, and written so that nobody ever sees half of one. Failures raise zrl::Error with the
// number of the system (errno) and "path: what the system says".
namespace zrl {

[[noreturn]] void raise_file_error(const std::filesystem::path& path, int code);

// The content of a file of at most `limit` bytes, with EFBIG as the error of a larger one. What is no regular
// file, a pipe, is read to its end.
std::string read_file(const std::filesystem::path& path, std::size_t limit = std::size_t{1} << 20);

// Writes the file as a whole, as NewFile does, and makes that survive a power cut.
void replace_file(const std::filesystem::path& path, std::string_view content, unsigned mode = 0644);

// Makes the names in a folder survive a power cut, where the file system can do that. A failure is not
// reported.
void flush_folder(const std::filesystem::path& folder);

// Writes all of `bytes` to an open file, if need be in several goes. The number of bytes that were written:
// if they are fewer, errno says why.
std::size_t write_all(int file, std::string_view bytes);

// A file that gets its name when it is complete: until then a temporary file beside it, which goes with this
// object. Several processes may write one file at the same time; the last that is complete stays. A process
// that is killed leaves its temporary file behind.
class NewFile {
 public:
  // Makes the temporary file, which is never readable by others than `mode` allows (the process's umask
  // counts, too).
  explicit NewFile(std::filesystem::path path, unsigned mode = 0644);
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  ~NewFile();

  void write(std::string_view bytes);

  enum class IfTaken { replace, keep };
  // Flushes the content to the disk and names the file. With `keep`, false if the name is taken; nothing is
  // changed then. The folder is the caller's to flush. Nothing may be written afterwards.
  bool publish(IfTaken if_taken = IfTaken::replace);

  // Removes temporary files of more than a day that processes left behind in a folder. Never raises an error.
  static void remove_leftovers(const std::filesystem::path& folder);

 private:
  bool rename(IfTaken if_taken) const;

  std::filesystem::path path_;
  std::filesystem::path temporary_;
  int file_ = -1;
};

}  // namespace zrl
