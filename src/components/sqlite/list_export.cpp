#include <algorithm>
#include <cerrno>
#include <string>

#include "components/sqlite/list_transfer.h"
#include "core/text/error.h"
#include "core/text/files.h"

namespace zrl::sqlite {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t buffer_size = std::size_t{256} << 10;
constexpr std::uint64_t report_interval = 32768;

// Writes lines into a new file.
class ListFile {
 public:
  explicit ListFile(const fs::path& path) : path_(path), file_(path) {}

  void add_line(std::string_view text) {
    if (buffer_.size() + text.size() >= buffer_size) flush();
    const std::size_t begin = buffer_.size();
    buffer_ += text;
    std::replace_if(
        buffer_.begin() + static_cast<std::ptrdiff_t>(begin), buffer_.end(),
        [](char c) { return c == '\n' || c == '\r'; }, ' ');
    buffer_ += '\n';
  }

  // False if a file has the name and must not be replaced.
  bool publish(bool overwrite) {
    flush();
    if (!file_.publish(overwrite ? NewFile::IfTaken::replace : NewFile::IfTaken::keep)) return false;
    flush_folder(path_.parent_path());
    return true;
  }

 private:
  void flush() {
    file_.write(buffer_);
    buffer_.clear();
  }

  fs::path path_;
  NewFile file_;
  std::string buffer_;
};

// The database may lie outside the console's folder; an export over it would destroy what it reads.
void check_target(const fs::path& path, const fs::path& database) {
  const fs::file_status status = fs::symlink_status(path);
  if (fs::exists(status) && !fs::is_regular_file(status) && !fs::is_symlink(status)) {
    throw Error(EEXIST, path.string() + ": not a file");
  }
  for (const char* ending : {"", "-wal", "-shm"}) {
    fs::path own = database;
    own += ending;
    std::error_code ignored;
    if (fs::equivalent(path, own, ignored)) throw Error(EEXIST, path.string() + ": belongs to the database");
  }
}

}  // namespace

bool export_list(const ListTransfer& transfer, const Statement& condition, const fs::path& path,
                 bool overwrite) {
  std::string select = "SELECT " + quoted_name(transfer.list.column.text()) + " FROM " +
                       quoted_name(transfer.list.table.text());
  if (!condition.empty()) select += " WHERE " + condition.skeleton();
  const Loan rows = transfer.session.statements.prepare(select + " ORDER BY rowid", condition);
  require_foreign_file(transfer.console, path);
  check_target(path, transfer.session.engine.path());
  if (!overwrite && fs::exists(path)) return false;

  ListFile file(path);
  const std::string text = "export " + std::string(transfer.list.table.text());
  for (std::uint64_t done = 0; rows->step(); ++done) {
    const std::string_view entry = rows->text(0);
    if (!entry.empty()) file.add_line(entry);
    if (done % report_interval == 0) transfer.console.show_progress({text, done, 0});
  }
  return file.publish(overwrite);
}

}  // namespace zrl::sqlite
