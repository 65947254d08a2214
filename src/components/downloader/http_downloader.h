#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "components/downloader/downloader.h"
#include "components/downloader/http_fetcher.h"
#include "components/downloader/published_scripts.h"
#include "components/downloader/update_address.h"

namespace zrl::downloader {

class HttpDownloader : public Downloader {
 public:
  HttpDownloader(ConsoleServices& console, std::vector<PublishedFile> files, const Options& options)
      : console_(console), files_(std::move(files)), options_(options) {}

  std::string updateall() override;
  std::vector<Failure> failures() const override { return failures_; }
  void update_db() override;

 private:
  std::string fetch_lists();
  void run(const UpdateAddress& address, std::span<FetchJob> jobs, std::string_view what) const;
  std::string conclude(const UpdateAddress& address, const std::vector<FetchJob>& jobs);
  std::vector<PublishedScript> fetch_scripts() const;
  void merge(const std::vector<PublishedScript>& scripts) const;
  std::string address() const { return console_.setting("updateurl"); }

  ConsoleServices& console_;
  std::vector<PublishedFile> files_;
  Options options_;
  std::vector<Failure> failures_;
};

}  // namespace zrl::downloader
