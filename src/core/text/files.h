#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

// Whole files: read, and written so that no reader ever sees half of one. Paths are those of the file system.
// Failures raise zrl::Error with the system's error number (errno) and the text "path: reason".
namespace zrl {

// `code` is an errno.
[[noreturn]] void raise_file_error(const std::filesystem::path& path, int code);

// The content of a file of at most `limit` bytes, 1 MiB by default; a larger one raises EFBIG. What is not a
// regular file, a pipe for example, raises EINVAL: whoever may make files in a folder could otherwise keep
// its readers waiting for ever.
std::string read_file(const std::filesystem::path& path, std::size_t limit = std::size_t{1} << 20);

// Writes the file as a whole, as NewFile does, and flushes file and folder, so that the new content survives
// a power cut. The old file stays if this fails.
void replace_file(const std::filesystem::path& path, std::string_view content, unsigned mode = 0644);

// Makes the names in a folder survive a power cut, where the file system supports that. The empty path is the
// working folder. A failure is not reported.
void flush_folder(const std::filesystem::path& folder);

// Writes all of `bytes` to an open file descriptor, repeating partial and interrupted writes. Returns the
// number of bytes that were written: if that is fewer, errno says why. Raises no error.
std::size_t write_all(int file, std::string_view bytes);

// A file that gets its name when it is complete. Until then it is a temporary file in the same folder, which
// the destructor deletes. Several processes may write one file at the same time; the last one to publish
// wins. A process that is killed leaves its temporary file behind, see remove_leftovers().
class NewFile {
 public:
  // Makes the temporary file. It is never accessible to others than `mode`, less the process's umask, allows.
  // The folder must exist.
  explicit NewFile(std::filesystem::path path, unsigned mode = 0644);
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  ~NewFile();

  // Appends. After an error the file must not be published.
  void write(std::string_view bytes);

  enum class IfTaken { replace, keep };
  // Flushes the content to the disk and gives the file its name. With `keep`, false if the name is taken;
  // the file of that name is left alone then. The caller flushes the folder if the name must survive a power
  // cut. To be called once; nothing may be written afterwards.
  bool publish(IfTaken if_taken = IfTaken::replace);

  // Removes temporary files that processes left behind in a folder and that are older than a day, which no
  // file takes to write. Never raises an error.
  static void remove_leftovers(const std::filesystem::path& folder);

 private:
  bool rename(IfTaken if_taken) const;

  std::filesystem::path path_;
  std::filesystem::path temporary_;
  int file_ = -1;
};

}  // namespace zrl
