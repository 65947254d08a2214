#pragma once

#include <functional>
#include <string_view>

#include <zlib.h>

namespace zrl::downloader {

// Decompresses a gzip stream piece by piece (RFC 1952). Unlike the transfer library's decoder, it knows
// whether the stream is complete.
class GzipDecoder {
 public:
  GzipDecoder();
  GzipDecoder(const GzipDecoder&) = delete;
  GzipDecoder& operator=(const GzipDecoder&) = delete;
  ~GzipDecoder();

  // Calls `take` with the decompressed bytes, in pieces that are valid during the call. Raises zrl::Error if
  // the bytes are not valid, and passes on what `take` raises.
  void decode(std::string_view bytes, const std::function<void(std::string_view)>& take);
  bool is_complete() const { return complete_; }

 private:
  z_stream stream_{};
  bool complete_ = false;
};

}  // namespace zrl::downloader
