#pragma once

#include <cstdint>
#include <deque>
#include <filesystem>
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

// The files that a session offers for fetching. Used by the session's thread, which offers, and
// the I/O thread, which serves.
class OfferedFiles {
 public:
  static constexpr std::size_t most = 100;  // beyond, the oldest are forgotten

  // A file that is offered again keeps its token. Nothing if it is no regular file.
  std::optional<Offer> add(const std::filesystem::path& path);
  // Where the file lies; it counts as fetched from then on.
  std::optional<std::filesystem::path> fetch(std::string_view token);
  // Those that have not been fetched, in the order in which they were offered.
  std::vector<Offer> unfetched() const;

 private:
  struct Held {
    Offer offer;
    std::filesystem::path path;
    bool fetched = false;
  };

  mutable std::mutex mutex_;
  std::deque<Held> held_;
};

// The file as an attachment under its own name, as it is at this moment; 404 if it is not there
// any more or no regular file.
Response file_response(const std::filesystem::path& path);

// The value of the header Content-Disposition (RFC 6266) that has any name saved under it.
std::string attachment_header(std::string_view name);

}  // namespace zrl::web
