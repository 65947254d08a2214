#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "core/contracts/downloader.h"
#include "core/database_client.h"

namespace zrl {

// The update of lists from the update server. The downloader fetches list files into the folder
// "download"; they are then merged into the tables one by one.

// One file and what is done with it. `file` is a product path below the console's folder.
struct ListFile {
  enum class Operation { import_entries, delete_entries };

  Operation operation;
  ListTable list;
  std::string_view file;
};

// All files, in the order in which the update of all lists applies them.
std::vector<ListFile> all_list_files();
// The shares of single pages.
std::vector<ListFile> attachment_list_files();
std::vector<ListFile> domain_list_files();
std::vector<ListFile> address_list_files();
std::vector<ListFile> keyword_list_files();
std::vector<ListFile> mail_list_files();

// The names under which a server publishes them, each once.
std::vector<std::string> published_list_files();

// Fetches the files and keeps the downloader's status text in `status`. Without a downloader the
// step fails like any other. A file that could not be fetched is recorded as a failed step.
bool fetch_lists(DatabaseClient& client, const std::shared_ptr<Downloader>& downloader, std::string& status);

// Merges the files. A file that is missing makes its step fail and leaves its list as it is.
void merge_lists(DatabaseClient& client, Console& console, std::span<const ListFile> files);

}  // namespace zrl
