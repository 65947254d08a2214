#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "core/contracts/downloader.h"
#include "core/database_client.h"

namespace zrl {

// The update of lists from the update server. The downloader fetches list files into the sub-folder
// "download" of the console's folder; they are then merged into the tables one by one, each in a transaction
// of its own. List files are UTF-8 text, one entry a line. Nothing here throws: failures are recorded steps.

// One file and what is done with it. `file` is a literal: a path below the console's folder that begins
// with "\" and separates folders by "\" ("\download\addblack.txt").
struct ListFile {
  enum class Operation { import_entries, delete_entries };

  Operation operation;
  ListTable list;
  std::string_view file;
};

// The steps of the update of all lists, in their order, which matters: an entry may be in several files.
std::vector<ListFile> all_list_files();
// The steps of the updates of single pages, each in its own order.
std::vector<ListFile> attachment_list_files();
std::vector<ListFile> domain_list_files();
std::vector<ListFile> address_list_files();
std::vector<ListFile> keyword_list_files();
std::vector<ListFile> mail_list_files();

// The files as a server publishes them: each once, in the order of their first use. This is what the
// downloader component is made with.
std::vector<PublishedFile> published_list_files();

// Fetches all published files; blocks, the console's events being served meanwhile. True if at least one file
// arrived; `status` then holds the downloader's status text (UTF-8), and each file that was expected but did
// not arrive is recorded as a failed step. Otherwise `status` stays as it was. A null `downloader` is
// false without a further record, because making it has been recorded already.
bool fetch_lists(DatabaseClient& client, const std::shared_ptr<Downloader>& downloader, std::string& status);

// Entries that were added and removed, and files that could not be merged.
struct MergedLists {
  std::uint64_t added = 0;
  std::uint64_t removed = 0;
  std::uint64_t failed = 0;
};

// Merges the files in their order and shows the progress. A file that is missing or unreadable makes its step
// fail and leaves its list as it is; the other steps are carried out all the same. Lines without an entry are
// noted.
MergedLists merge_lists(DatabaseClient& client, Console& console, std::span<const ListFile> files);

// Say in a sentence what came of it: that nothing was fetched, right after that failed, or what was merged.
void say_not_fetched(const DatabaseClient& client);
void say_merged(const DatabaseClient& client, const MergedLists& merged);

}  // namespace zrl
