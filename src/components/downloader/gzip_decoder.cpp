#include "components/downloader/gzip_decoder.h"

#include <array>
#include <cerrno>
#include <new>

#include "core/text/error.h"

namespace zrl::downloader {

namespace {

constexpr int gzip_window = 15 + 16;

}  // namespace

GzipDecoder::GzipDecoder() {
  if (inflateInit2(&stream_, gzip_window) != Z_OK) throw std::bad_alloc();
}

GzipDecoder::~GzipDecoder() {
  inflateEnd(&stream_);
}

void GzipDecoder::decode(std::string_view bytes, const std::function<void(std::string_view)>& take) {
  std::array<char, 65536> block;
  stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
  stream_.avail_in = static_cast<uInt>(bytes.size());
  bool full = false;
  while (stream_.avail_in > 0 || full) {
    if (complete_) {  // a file may have several members (RFC 1952)
      inflateReset(&stream_);
      complete_ = false;
    }
    stream_.next_out = reinterpret_cast<Bytef*>(block.data());
    stream_.avail_out = block.size();
    const int code = inflate(&stream_, Z_NO_FLUSH);
    if (code != Z_OK && code != Z_STREAM_END && code != Z_BUF_ERROR) {
      throw Error(EINVAL, "what came is not compressed as the server says");
    }
    complete_ = code == Z_STREAM_END;
    full = stream_.avail_out == 0 && !complete_;
    take({block.data(), block.size() - stream_.avail_out});
  }
}

}  // namespace zrl::downloader
