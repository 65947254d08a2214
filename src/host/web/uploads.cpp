#include "host/web/uploads.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "core/text/error.h"
#include "core/text/text.h"
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

int digit_of(char character) {
  constexpr std::string_view digits = "0123456789abcdef";
  const std::size_t found = digits.find(static_cast<char>(character | 0x20));
  if (character >= '0' && character <= '9') return character - '0';
  return found == digits.npos || found < 10 ? -1 : static_cast<int>(found);
}

std::optional<std::string> decoded(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      result += text[i];
      continue;
    }
    const int high = i + 2 < text.size() ? digit_of(text[i + 1]) : -1;
    const int low = i + 2 < text.size() ? digit_of(text[i + 2]) : -1;
    if (high < 0 || low < 0) return {};
    result += static_cast<char>(high * 16 + low);
    i += 2;
  }
  return result;
}

// The well-formed character at `at`, in bytes.
std::size_t length_at(std::string_view text, std::size_t at) {
  std::size_t end = at + 1;
  while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) ++end;
  return end - at;
}

// Control characters, and those that are not seen but change what is: as people would not find
// them in a name, none may stand in one.
bool is_unseen(std::string_view character) {
  if (character.size() == 1) return static_cast<unsigned char>(character[0]) < 0x20 || character[0] == 0x7f;
  if (character.size() == 2) return character[0] == '\xc2' && static_cast<unsigned char>(character[1]) < 0xa0;
  constexpr std::array<std::string_view, 14> turning = {"\u200b", "\u200e", "\u200f", "\u2028", "\u2029",
                                                        "\u202a", "\u202b", "\u202c", "\u202d", "\u202e",
                                                        "\u2066", "\u2067", "\u2068", "\u2069"};
  return std::find(turning.begin(), turning.end(), character) != turning.end() || character == "\ufeff";
}

std::string part_of(std::string_view text, std::size_t limit) {
  std::size_t end = 0;
  while (end < text.size() && end + length_at(text, end) <= limit) end += length_at(text, end);
  return std::string(text.substr(0, end));
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
  const std::string_view last = std::string_view(text).substr(folder == text.npos ? 0 : folder + 1);
  std::string seen;
  for (std::size_t i = 0; i < last.size(); i += length_at(last, i)) {
    const std::string_view character = last.substr(i, length_at(last, i));
    if (!is_unseen(character)) seen += character;
  }
  seen = strip(seen);
  const std::size_t ending = ending_of(seen);
  const std::string kept_ending = seen.substr(ending);
  const std::string name =
      strip(part_of(std::string_view(seen).substr(0, ending), longest_name - kept_ending.size()));
  return name.empty() ? "upload" + kept_ending : name + kept_ending;
}

UploadedFile::UploadedFile(fs::path folder, fs::path temporary, Descriptor file)
    : folder_(std::move(folder)), temporary_(std::move(temporary)), file_(std::move(file)) {}

UploadedFile::~UploadedFile() {
  ::unlink(temporary_.c_str());
}

void UploadedFile::write(std::string_view piece) {
  size_ += piece.size();
  while (!piece.empty() && failure_ == 0) {
    const ssize_t written = ::write(file_.get(), piece.data(), piece.size());
    if (written >= 0) {
      piece.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR) {
      failure_ = errno;
    }
  }
}

// A second name, and the first one removed with this object: unlike a renaming this never replaces
// a file that is there.
std::string UploadedFile::keep(std::string_view wanted) {
  if (failure_ != 0) raise(failure_);
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

std::unique_ptr<UploadedFile> UploadFolder::receive() const {
  std::error_code failure;
  fs::create_directories(arriving(), failure);
  if (failure) raise(failure.value());
  std::string name = (arriving() / "XXXXXX").string();
  Descriptor file(::mkostemp(name.data(), O_CLOEXEC));
  if (!file) raise(errno);
  return std::make_unique<UploadedFile>(path_, name, std::move(file));
}

void UploadFolder::sweep() const {
  remove_older(path_, kept);
  remove_older(arriving(), arrives_within);
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
