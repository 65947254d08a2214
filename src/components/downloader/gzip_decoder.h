#pragma once

#include <functional>
#include <string_view>

#include <zlib.h>

namespace zrl::downloader {

// Takes compressed bytes as they come (RFC 1952) and hands on what they stand for. Unlike the
// transfer library, it knows whether the last of them has come.
class GzipDecoder {
 public:
  GzipDecoder();
  GzipDecoder(const GzipDecoder&) = delete;
  GzipDecoder& operator=(const GzipDecoder&) = delete;
  ~GzipDecoder();

  // Raises zrl::Error if the bytes are not valid; lets through what `take` raises.
  void decode(std::string_view bytes, const std::function<void(std::string_view)>& take);
  bool is_complete() const { return complete_; }

 private:
  z_stream stream_{};
  bool complete_ = false;
};

}  // namespace zrl::downloader
