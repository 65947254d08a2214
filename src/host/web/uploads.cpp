#include "host/web/uploads.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/text/ascii.h"
#include "core/text/error.h"
#include "core/text/files.h"
#include "core/text/printable.h"
#include "core/text/utf8.h"
#include "host/web/responses.h"

namespace zrl::web {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t longest_name = 120;
constexpr std::size_t longest_ending = 20;
constexpr int most_of_a_name = 1000;
// Before the server gives the browser up.
constexpr std::chrono::seconds patience{45};
constexpr std::chrono::hours arrives_within{24};
constexpr std::chrono::hours leaves_within{24};

std::optional<std::string> decoded(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      result += text[i];
      continue;
    }
    const int high = i + 2 < text.size() ? hex_value(text[i + 1]) : -1;
    const int low = i + 2 < text.size() ? hex_value(text[i + 2]) : -1;
    if (high < 0 || low < 0) return {};
    result += static_cast<char>(high * 16 + low);
    i += 2;
  }
  return result;
}

// Where the ending begins: ".txt".
std::size_t ending_of(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  return dot == name.npos || dot == 0 || name.size() - dot > longest_ending ? name.size() : dot;
}

std::string strip(std::string_view name) {
  constexpr std::string_view at_ends = " .";
  const std::size_t begin = name.find_first_not_of(at_ends);
  if (begin == name.npos) return {};
  return std::string(name.substr(begin, name.find_last_not_of(at_ends) + 1 - begin));
}

[[noreturn]] void raise(int failure) {
  throw Error(failure, std::string("the file cannot be kept: ") + std::strerror(failure));
}

std::uint64_t size_of_files(const fs::path& folder) {
  std::uint64_t sum = 0;
  std::error_code failure;
  for (fs::directory_iterator entry(folder, failure), end; !failure && entry != end;
       entry.increment(failure)) {
    std::error_code ignored;
    if (fs::is_regular_file(entry->symlink_status(ignored))) sum += entry->file_size(ignored);
  }
  return sum;
}

void remove_older(const fs::path& folder, std::chrono::hours age) {
  std::error_code failure;
  const auto oldest = fs::file_time_type::clock::now() - age;
  for (fs::directory_iterator entry(folder, failure), end; !failure && entry != end;
       entry.increment(failure)) {
    std::error_code ignored;
    const bool is_file = fs::is_regular_file(entry->symlink_status(ignored));
    const auto written = fs::last_write_time(entry->path(), ignored);
    if (is_file && !ignored && written < oldest) fs::remove(entry->path(), ignored);
  }
}

void remove_older_folders(const fs::path& folder, std::chrono::hours age) {
  std::error_code failure;
  const auto oldest = fs::file_time_type::clock::now() - age;
  for (fs::directory_iterator entry(folder, failure), end; !failure && entry != end;
       entry.increment(failure)) {
    std::error_code ignored;
    const bool is_folder = fs::is_directory(entry->symlink_status(ignored));
    const auto written = fs::last_write_time(entry->path(), ignored);
    if (is_folder && !ignored && written < oldest) fs::remove_all(entry->path(), ignored);
  }
}

// Makes the folder ours alone. False if it is a link or somebody else's: what a link leads to would be filled
// and emptied in its place.
bool is_ours_alone(const fs::path& folder) {
  if (::mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST) return false;
  const Descriptor open(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  struct stat state{};
  if (!open || ::fstat(open.get(), &state) != 0) return false;
  if (state.st_uid != ::geteuid()) {
    errno = EPERM;
    return false;
  }
  return (state.st_mode & (S_IRWXG | S_IRWXO)) == 0 || ::fchmod(open.get(), S_IRWXU) == 0;
}

}  // namespace

std::optional<UploadTarget> parse_upload_target(std::string_view header) {
  const std::size_t first = header.find('/');
  const std::size_t second = first == header.npos ? first : header.find('/', first + 1);
  if (second == header.npos) return {};
  auto form = decoded(header.substr(0, first));
  auto control = decoded(header.substr(first + 1, second - first - 1));
  auto name = decoded(header.substr(second + 1));
  if (!form || !control || !name) return {};
  return UploadTarget{std::move(*form), std::move(*control), std::move(*name)};
}

std::string upload_name(std::string_view wanted) {
  const std::string text = valid_utf8(wanted);
  const std::size_t folder = text.find_last_of("/\\");
  std::string_view last = std::string_view(text).substr(folder == text.npos ? 0 : folder + 1);
  std::string seen;
  while (!last.empty()) {
    const char32_t character = take_character(last);
    if (!is_unseen(character)) append_character(seen, character);
  }
  seen = strip(seen);
  const std::size_t ending = ending_of(seen);
  const std::string kept_ending = seen.substr(ending);
  const std::string name = strip(
      cut_between_characters(std::string_view(seen).substr(0, ending), longest_name - kept_ending.size()));
  return name.empty() ? "upload" + kept_ending : name + kept_ending;
}

UploadedFile::UploadedFile(fs::path folder, fs::path temporary, Descriptor file, std::uint64_t reserved)
    : folder_(std::move(folder)),
      temporary_(std::move(temporary)),
      file_(std::move(file)),
      reserved_(reserved) {}

UploadedFile::~UploadedFile() {
  ::unlink(temporary_.c_str());
}

void UploadedFile::write(std::string_view piece) {
  size_ += piece.size();
  if (failure_ == 0 && write_all(file_.get(), piece) < piece.size()) failure_ = errno;
}

// A second name, and the first one removed with this object: unlike a renaming this never replaces
// a file that is there.
std::string UploadedFile::keep(std::string_view wanted) {
  if (failure_ != 0) raise(failure_);
  if (size_ < reserved_ && ::ftruncate(file_.get(), static_cast<off_t>(size_)) != 0) raise(errno);
  const std::string first = upload_name(wanted);
  const std::size_t ending = ending_of(first);
  for (int i = 1; i <= most_of_a_name; ++i) {
    std::string name = first;
    if (i > 1) name.insert(ending, " (" + std::to_string(i) + ")");
    if (::link(temporary_.c_str(), (folder_ / name).c_str()) == 0) return name;
    if (errno != EEXIST) raise(errno);
  }
  raise(EEXIST);
}

bool UploadFolder::has_room_for(std::uint64_t size) const {
  return size <= all_files && size_of_files(path_) + size_of_files(arriving()) <= all_files - size;
}

std::unique_ptr<UploadedFile> UploadFolder::receive(std::uint64_t size) const {
  if (!is_ours_alone(path_) || !is_ours_alone(arriving())) raise(errno);
  std::string name = (arriving() / "XXXXXX").string();
  Descriptor file(::mkostemp(name.data(), O_CLOEXEC));
  if (!file) raise(errno);
  // A size without blocks counts as well.
  if (::ftruncate(file.get(), static_cast<off_t>(size)) != 0) {
    const int code = errno;
    ::unlink(name.c_str());
    raise(code);
  }
  return std::make_unique<UploadedFile>(path_, name, std::move(file), size);
}

LeavingFile::~LeavingFile() {
  std::error_code ignored;
  fs::remove_all(path_.parent_path(), ignored);
}

std::shared_ptr<LeavingFile> UploadFolder::leave(std::string_view name) const {
  if (!is_ours_alone(path_) || !is_ours_alone(leaving())) raise(errno);
  std::string folder = (leaving() / "XXXXXX").string();
  if (::mkdtemp(folder.data()) == nullptr) raise(errno);
  return std::make_shared<LeavingFile>(fs::path(folder) / upload_name(name));
}

bool UploadFolder::sweep() const {
  if (!is_ours_alone(path_)) return false;
  remove_older(path_, kept);
  if (is_ours_alone(leaving())) remove_older_folders(leaving(), leaves_within);
  if (!is_ours_alone(arriving())) return false;
  remove_older(arriving(), arrives_within);
  return true;
}

PendingUpload::PendingUpload(UploadTarget where, std::unique_ptr<UploadedFile> what, Reply answer)
    : target(std::move(where)),
      file(std::move(what)),
      reply(std::move(answer)),
      deadline(std::chrono::steady_clock::now() + patience) {}

PendingUpload::~PendingUpload() {
  if (reply) refuse(409, "refused");
}

void PendingUpload::refuse(int status, std::string_view code) {
  std::exchange(reply, nullptr)(error_response(status, code));
}

void PendingUpload::accept(std::string_view name) {
  std::exchange(reply, nullptr)(json_response(200, {{"name", name}}));
}

}  // namespace zrl::web
