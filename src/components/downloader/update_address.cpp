#include "components/downloader/update_address.h"

#include <memory>

#include <curl/curl.h>

#include "core/text/error.h"
#include "core/text/text.h"

namespace zrl::downloader {

namespace {

class Url {
 public:
  explicit Url(const std::string& text) : handle_(curl_url()) {
    if (!handle_) throw std::bad_alloc();
    set(CURLUPART_URL, text.c_str());
  }

  void set(CURLUPart part, const char* text) {
    const CURLUcode code = curl_url_set(handle_.get(), part, text, 0);
    if (code != CURLUE_OK) {
      throw Error(error_number::invalid_property_value,
                  std::string("the address of the update server is not valid: ") + curl_url_strerror(code));
    }
  }

  std::string get(CURLUPart part) const {
    char* text = nullptr;
    if (curl_url_get(handle_.get(), part, &text, 0) != CURLUE_OK) return {};
    const std::unique_ptr<char, decltype(&curl_free)> owner(text, curl_free);
    return text;
  }

 private:
  struct Release {
    void operator()(CURLU* handle) const { curl_url_cleanup(handle); }
  };

  std::unique_ptr<CURLU, Release> handle_;
};

}  // namespace

UpdateAddress::UpdateAddress(std::string_view text) : text_(trim(text)) {
  if (text_.empty()) {
    throw Error(error_number::invalid_property_value,
                "no update server is named (the registry value updateurl)");
  }
  if (text_.find('\0') != std::string::npos) {
    throw Error(error_number::invalid_property_value,
                "the address of the update server is not valid: it holds a zero byte");
  }
  if (const std::string scheme = lower(text_.substr(0, text_.find(':')));
      scheme != "http" && scheme != "https") {
    throw Error(error_number::invalid_property_value,
                "the address of the update server begins with neither http:// nor https://");
  }
  Url url(text_);
  encrypted_ = url.get(CURLUPART_SCHEME) == "https";
  folder_ = url.get(CURLUPART_PATH);
  if (!folder_.ends_with('/')) folder_ += '/';
  for (const CURLUPart part : {CURLUPART_FRAGMENT, CURLUPART_QUERY, CURLUPART_USER, CURLUPART_PASSWORD}) {
    url.set(part, nullptr);
  }
  shown_ = url.get(CURLUPART_URL);
}

std::string UpdateAddress::of(std::string_view file) const {
  Url url(text_);
  url.set(CURLUPART_PATH, (folder_ + std::string(file)).c_str());
  url.set(CURLUPART_FRAGMENT, nullptr);
  return url.get(CURLUPART_URL);
}

}  // namespace zrl::downloader
