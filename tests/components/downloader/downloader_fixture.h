#pragma once

#include <algorithm>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include "components/downloader/downloader.h"
#include "core/text/error.h"
#include "support/fake_services.h"
#include "support/fake_update_server.h"
#include "support/temporary_folder.h"

namespace zrl::test {

class DownloaderTest : public ::testing::Test {
 protected:
  DownloaderTest() {
    for (const char* name : {"http_proxy", "https_proxy", "all_proxy", "HTTPS_PROXY", "ALL_PROXY"})
      ::unsetenv(name);
    options.limits.connect = std::chrono::seconds(5);
    options.limits.stall = std::chrono::seconds(5);
    options.limits.file = options.limits.total = std::chrono::seconds(20);
    std::filesystem::create_directory(folder.path() / "download");
  }

  void write(const std::string& name, std::string_view content) const {
    std::ofstream(folder.path() / "download" / name, std::ios::binary) << content;
  }
  // Nothing if there is no such file.
  std::optional<std::string> read(const std::string& name) const {
    std::ifstream file(folder.path() / "download" / name, std::ios::binary);
    if (!file) return std::nullopt;
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
  }
  std::vector<std::string> names() const {
    std::vector<std::string> result;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path() / "download")) {
      result.push_back(entry.path().filename());
    }
    std::sort(result.begin(), result.end());
    return result;
  }

  // The status, or "error: " and the text of what was raised.
  std::string update() {
    console.settings["updateurl"] = address;
    downloader = downloader::make(console, published, options);
    try {
      return downloader->updateall();
    } catch (const Error& error) {
      return std::string("error: ") + error.what();
    }
  }
  // "file: reason", one a line.
  std::string failures() const {
    std::string result;
    for (const Downloader::Failure& failure : downloader->failures()) {
      result += failure.file + ": " + failure.reason + "\n";
    }
    return result;
  }

  TemporaryFolder folder;
  FakeUpdateServer server;
  FakeServices console{folder.path()};
  std::string address = server.address() + "/lists";
  std::vector<PublishedFile> published{{"addblack.txt", ListKind::domains},
                                       {"delblack.txt", ListKind::domains},
                                       {"addextension", ListKind::names}};
  downloader::Options options;
  std::shared_ptr<Downloader> downloader;
};

}  // namespace zrl::test
