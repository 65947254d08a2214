#include "pages/lists/remote_update.h"

#include <algorithm>

#include "core/text/error.h"
#include "core/text/paths.h"

namespace zrl {

namespace {

constexpr auto take = ListFile::Operation::import_entries;
constexpr auto drop = ListFile::Operation::delete_entries;

// Deleting comes before adding, but for the address black list, where it is the other way round.
// A word published for one subject list leaves the other one: the add file of each is also a
// delete file of its opposite. The add file of the extensions has no ending.
constexpr ListFile files_of_update[] = {
    {drop, "files", "files", "\\download\\delfiles.txt"},
    {drop, "extension", "extension", "\\download\\delextension.txt"},
    {take, "files", "files", "\\download\\addfiles.txt"},
    {take, "extension", "extension", "\\download\\addextension"},
    {drop, "entry", "blacklist", "\\download\\delblack.txt"},
    {drop, "entry", "whitelist", "\\download\\delwhite.txt"},
    {take, "entry", "blacklist", "\\download\\addblack.txt"},
    {take, "entry", "whitelist", "\\download\\addwhite.txt"},
    {drop, "IPNumber", "Blackhost", "\\download\\delblackip.txt"},
    {drop, "IPNumber", "Whitehost", "\\download\\delwhiteip.txt"},
    {take, "IPNumber", "Blackhost", "\\download\\addblackip.txt"},
    {take, "IPNumber", "Whitehost", "\\download\\addwhiteip.txt"},
    {drop, "entry", "swords", "\\download\\delsubject.txt"},
    {drop, "entry", "words", "\\download\\delbody.txt"},
    {take, "entry", "swords", "\\download\\addsubject.txt"},
    {take, "entry", "words", "\\download\\addbody.txt"},
    {take, "entry", "subjectwhite", "\\download\\addsubjectwhite.txt"},
    {drop, "entry", "subjectwhite", "\\download\\addsubject.txt"},
    {drop, "entry", "subjectwhite", "\\download\\delsubjectwhite.txt"},
    {drop, "entry", "swords", "\\download\\addsubjectwhite.txt"},
    {take, "entry", "blackmail", "\\download\\adduserblack.txt"},
    {drop, "entry", "blackmail", "\\download\\deluserblack.txt"},
};

constexpr std::span<const ListFile> share(std::size_t first_step, std::size_t last_step) {
  return std::span(files_of_update).subspan(first_step - 1, last_step - first_step + 1);
}

// As in the update of all lists, but for the last two, which change places.
constexpr ListFile keyword_files[] = {
    files_of_update[12], files_of_update[13], files_of_update[14], files_of_update[15],
    files_of_update[16], files_of_update[17], files_of_update[19], files_of_update[18],
};

}  // namespace

std::span<const ListFile> all_list_files() {
  return files_of_update;
}

std::span<const ListFile> attachment_list_files() {
  return share(1, 4);
}

std::span<const ListFile> domain_list_files() {
  return share(5, 8);
}

std::span<const ListFile> address_list_files() {
  return share(9, 12);
}

std::span<const ListFile> keyword_list_files() {
  return keyword_files;
}

std::span<const ListFile> mail_list_files() {
  return share(21, 22);
}

std::vector<std::string> published_list_files() {
  std::vector<std::string> names;
  for (const ListFile& file : files_of_update) {
    std::string name = to_file_path(file.file.text()).filename().string();
    if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(std::move(name));
  }
  return names;
}

bool fetch_lists(DatabaseClient& client, const std::shared_ptr<Downloader>& downloader, std::string& status) {
  if (!downloader) return false;
  const bool fetched = client.component_step("updateall", [&] { status = downloader->updateall(); });
  if (!fetched) return false;
  for (const Downloader::Failure& failure : downloader->failures()) {
    client.component_step("updateall " + failure.file,
                          [&] { throw Error(error_number::invalid_call, failure.reason); });
  }
  return true;
}

void merge_lists(DatabaseClient& client, Console& console, std::span<const ListFile> files) {
  std::uint64_t done = 0;
  for (const ListFile& file : files) {
    console.host().show_progress({file.table.text(), done++, files.size()});
    const std::string path = (console.folder() / to_file_path(file.file.text().substr(1))).string();
    if (file.operation == ListFile::Operation::import_entries) {
      client.import_file(file.column, file.table, path);
    } else {
      client.delete_file(file.column, file.table, path);
    }
  }
}

}  // namespace zrl
