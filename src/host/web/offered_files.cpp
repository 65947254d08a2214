#include "host/web/offered_files.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/text/utf8.h"
#include "host/web/random_token.h"
#include "host/web/responses.h"
#include "host/web/terminal.h"

namespace zrl::web {

namespace {

class FileSource : public BodySource {
 public:
  FileSource(Descriptor file, std::uint64_t size) : file_(std::move(file)), size_(size) {}

  std::uint64_t size() const override { return size_; }

  std::size_t read(char* data, std::size_t size) override {
    ssize_t length = 0;
    do {
      length = ::read(file_.get(), data, size);
    } while (length < 0 && errno == EINTR);
    return length > 0 ? static_cast<std::size_t>(length) : 0;
  }

 private:
  Descriptor file_;
  std::uint64_t size_;
};

}  // namespace

std::optional<Offer> OfferedFiles::add(const std::filesystem::path& path,
                                       std::shared_ptr<const void> keeper) {
  std::error_code failure;
  if (!std::filesystem::is_regular_file(std::filesystem::symlink_status(path, failure))) return {};
  const std::uint64_t size = std::filesystem::file_size(path, failure);
  if (failure) return {};
  const std::scoped_lock lock(mutex_);
  if (keeper) drop_kept();
  const auto found =
      std::find_if(held_.begin(), held_.end(), [&](const Held& held) { return held.path == path; });
  Held held{{{}, path.filename().string(), size}, path, std::move(keeper)};
  if (found != held_.end()) {
    held.offer.token = found->offer.token;
    held_.erase(found);
  } else {
    held.offer.token = random_token();
  }
  if (held_.size() == most) held_.pop_front();
  held_.push_back(std::move(held));
  return held_.back().offer;
}

void OfferedFiles::drop_kept() {
  const auto kept = [](const Held& held) { return held.keeper != nullptr; };
  if (std::cmp_less(std::count_if(held_.begin(), held_.end(), kept), most_kept)) return;
  held_.erase(std::find_if(held_.begin(), held_.end(), kept));
}

std::optional<std::filesystem::path> OfferedFiles::fetch(std::string_view token, bool for_good) {
  const std::scoped_lock lock(mutex_);
  for (Held& held : held_) {
    if (held.offer.token != token) continue;
    held.fetched = held.fetched || for_good;
    return held.path;
  }
  return {};
}

std::vector<Offer> OfferedFiles::unfetched() const {
  const std::scoped_lock lock(mutex_);
  std::vector<Offer> offers;
  for (const Held& held : held_) {
    if (!held.fetched) offers.push_back(held.offer);
  }
  return offers;
}

Response file_response(const std::filesystem::path& path) {
  Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
  struct stat state{};
  if (!file || ::fstat(file.get(), &state) != 0 || !S_ISREG(state.st_mode)) {
    return error_response(404, "no_file");
  }
  const auto size = static_cast<std::uint64_t>(state.st_size);
  Response response{.content_type = "application/octet-stream"};
  response.headers.emplace_back("Content-Disposition", attachment_header(path.filename().string()));
  response.source = std::make_shared<FileSource>(std::move(file), size);
  return response;
}

std::string attachment_header(std::string_view name) {
  constexpr std::string_view plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_.";
  constexpr std::string_view digits = "0123456789ABCDEF";
  const std::string text = valid_utf8(name);
  std::string simple;
  std::string encoded;
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    if (plain.find(character) != plain.npos) {
      simple += character;
      encoded += character;
      continue;
    }
    // One underscore for a character, whatever its length in bytes.
    if (!is_continuation(character)) simple += byte == ' ' ? ' ' : '_';
    encoded.append("%").append(1, digits[byte >> 4]).append(1, digits[byte & 15]);
  }
  return "attachment; filename=\"" + simple + "\"; filename*=UTF-8''" + encoded;
}

}  // namespace zrl::web
