#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "components/downloader/downloader_components.h"
#include "components/downloader/http_fetcher.h"
#include "components/downloader/published_scripts.h"
#include "components/downloader/update_address.h"

namespace zrl {

class HttpDownloader : public Downloader {
 public:
  explicit HttpDownloader(DownloaderSettings settings) : settings_(std::move(settings)) {}

  std::string updateall() override;
  std::vector<Failure> failures() const override { return failures_; }
  void update_db() override;

 private:
  void run(const UpdateAddress& address, std::span<FetchJob> jobs, std::string_view what) const;
  std::string conclude(const UpdateAddress& address, const std::vector<FetchJob>& jobs);
  std::vector<PublishedScript> fetch_scripts() const;
  void merge(const std::vector<PublishedScript>& scripts) const;

  DownloaderSettings settings_;
  std::vector<Failure> failures_;
};

}  // namespace zrl
