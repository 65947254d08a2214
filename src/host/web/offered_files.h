#pragma once

#include <cstdint>
#include <deque>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/web/transport.h"

namespace zrl::web {

// A file that a page has made for the user.
struct Offer {
  std::string token;  // what the browser asks for it by
  std::string name;   // without its folder
  std::uint64_t size = 0;
};

// The files that a session offers for download. Safe for two threads: the session's, which offers, and the
// I/O thread, which serves.
class OfferedFiles {
 public:
  static constexpr std::size_t most = 100;     // beyond, the oldest are forgotten
  static constexpr std::size_t most_kept = 8;  // of those that exist for the offer alone

  // Offers a file; one that is offered again keeps its token. Nothing if it is no regular file. `keeper`, if
  // there is one, is destroyed when the file is not offered any more.
  std::optional<Offer> add(const std::filesystem::path& path, std::shared_ptr<const void> keeper = nullptr);
  // The file's path, or nothing for an unknown token. The file counts as fetched from then on if `for_good`.
  std::optional<std::filesystem::path> fetch(std::string_view token, bool for_good = true);
  // Those that have not been fetched, in the order in which they were offered.
  std::vector<Offer> unfetched() const;

 private:
  struct Held {
    Offer offer;
    std::filesystem::path path;
    std::shared_ptr<const void> keeper;
    bool fetched = false;
  };

  // Forgets the oldest of the files that exist for their offer alone, if there are too many.
  void drop_kept();

  mutable std::mutex mutex_;
  std::deque<Held> held_;
};

// The file as an attachment under its own name, as it is at this moment; 404 if it is not there
// any more or no regular file.
Response file_response(const std::filesystem::path& path);

// The value of the header Content-Disposition (RFC 6266, RFC 8187) that makes a browser save the file under
// this name, which may be any UTF-8.
std::string attachment_header(std::string_view name);

}  // namespace zrl::web
