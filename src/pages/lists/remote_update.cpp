#include "pages/lists/remote_update.h"

#include <algorithm>

#include "core/text/paths.h"

namespace zrl {

namespace {

constexpr auto take = ListFile::Operation::import_entries;
constexpr auto drop = ListFile::Operation::delete_entries;

std::vector<ListFile> joined(std::initializer_list<std::vector<ListFile>> parts) {
  std::vector<ListFile> all;
  for (const std::vector<ListFile>& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

// A word published for one subject list leaves the other one: the add file of each is also a delete file
// of its opposite.
std::vector<ListFile> first_keyword_files() {
  return {
      {drop, list::subject_keywords, "\\download\\delsubject.txt"},
      {drop, list::body_keywords, "\\download\\delbody.txt"},
      {take, list::subject_keywords, "\\download\\addsubject.txt"},
      {take, list::body_keywords, "\\download\\addbody.txt"},
      {take, list::white_subjects, "\\download\\addsubjectwhite.txt"},
      {drop, list::white_subjects, "\\download\\addsubject.txt"},
  };
}

constexpr ListFile withdrawn_white_subjects{drop, list::white_subjects, "\\download\\delsubjectwhite.txt"};
constexpr ListFile whitened_keywords{drop, list::subject_keywords, "\\download\\addsubjectwhite.txt"};

}  // namespace

std::vector<ListFile> all_list_files() {
  return joined({attachment_list_files(),
                 domain_list_files(),
                 address_list_files(),
                 first_keyword_files(),
                 {withdrawn_white_subjects, whitened_keywords},
                 mail_list_files()});
}

// The file with extensions to add is published without ".txt".
std::vector<ListFile> attachment_list_files() {
  return {
      {drop, list::file_names, "\\download\\delfiles.txt"},
      {drop, list::extensions, "\\download\\delextension.txt"},
      {take, list::file_names, "\\download\\addfiles.txt"},
      {take, list::extensions, "\\download\\addextension"},
  };
}

std::vector<ListFile> domain_list_files() {
  return {
      {drop, list::black_domains, "\\download\\delblack.txt"},
      {drop, list::white_domains, "\\download\\delwhite.txt"},
      {take, list::black_domains, "\\download\\addblack.txt"},
      {take, list::white_domains, "\\download\\addwhite.txt"},
  };
}

std::vector<ListFile> address_list_files() {
  return {
      {drop, list::black_addresses, "\\download\\delblackip.txt"},
      {drop, list::white_addresses, "\\download\\delwhiteip.txt"},
      {take, list::black_addresses, "\\download\\addblackip.txt"},
      {take, list::white_addresses, "\\download\\addwhiteip.txt"},
  };
}

// The last two steps are in the opposite order from that of the update of all lists.
std::vector<ListFile> keyword_list_files() {
  return joined({first_keyword_files(), {whitened_keywords, withdrawn_white_subjects}});
}

// Only here are entries added before others are deleted.
std::vector<ListFile> mail_list_files() {
  return {
      {take, list::black_mails, "\\download\\adduserblack.txt"},
      {drop, list::black_mails, "\\download\\deluserblack.txt"},
  };
}

std::vector<PublishedFile> published_list_files() {
  std::vector<PublishedFile> published;
  for (const ListFile& file : all_list_files()) {
    std::string name = to_file_path(file.file).filename().string();
    const bool is_new = std::none_of(published.begin(), published.end(),
                                     [&](const PublishedFile& known) { return known.name == name; });
    if (is_new) published.push_back({std::move(name), file.list.kind});
  }
  return published;
}

bool fetch_lists(DatabaseClient& client, const std::shared_ptr<Downloader>& downloader, std::string& status) {
  if (!downloader) return false;
  const bool fetched = client.component_step("updateall", [&] { status = downloader->updateall(); });
  if (!fetched) return false;
  for (const Downloader::Failure& failure : downloader->failures()) {
    client.failed(ActivityRecord::Kind::component, "updateall " + failure.file, failure.reason,
                  Console::Step::write);
  }
  return true;
}

MergedLists merge_lists(DatabaseClient& client, Console& console, std::span<const ListFile> files) {
  MergedLists merged;
  std::uint64_t done = 0;
  for (const ListFile& file : files) {
    console.host().show_progress({file.list.table.text(), done++, files.size()});
    const std::string path = (console.folder() / to_file_path(file.file.substr(1))).string();
    const bool adds = file.operation == ListFile::Operation::import_entries;
    const std::optional<ListFileResult> result =
        adds ? client.import_file(file.list, path) : client.delete_file(file.list, path);
    if (result) (adds ? merged.added : merged.removed) += result->changed;
    if (!result) ++merged.failed;
    if (result && result->refused > 0) {
      client.noted(path + ": lines without an entry of the list: " + std::to_string(result->refused));
    }
  }
  return merged;
}

void say_not_fetched(const DatabaseClient& client) {
  client.say_failed("The lists could not be fetched from the server");
}

void say_merged(const DatabaseClient& client, const MergedLists& merged) {
  const std::string added = client.number_text(merged.added);
  const std::string removed = client.number_text(merged.removed);
  if (merged.failed == 0) {
    return client.say_done("Lists updated: %1 entries added, %2 removed", {added, removed});
  }
  client.say_failed("Lists updated: %1 entries added, %2 removed, %3 files not read",
                    {added, removed, client.number_text(merged.failed)});
}

}  // namespace zrl
