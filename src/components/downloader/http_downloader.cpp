#include "components/downloader/http_downloader.h"

#include <cerrno>
#include <chrono>
#include <memory>

#include "components/downloader/downloaded_file.h"
#include "core/contracts/console_folder.h"
#include "core/contracts/database.h"
#include "core/contracts/last_update.h"
#include "core/contracts/statement.h"
#include "core/text/error.h"
#include "core/text/files.h"
#include "core/text/secrets.h"
#include "core/text/utf16.h"

namespace zrl::downloader {

namespace {

namespace fs = std::filesystem;
using Outcome = FetchJob::Outcome;

constexpr std::string_view script_file = "scripts.json";

class TextTarget : public FetchTarget {
 public:
  void write(std::string_view bytes) override { text.append(bytes); }

  std::string text;
};

std::string in_megabytes(std::uint64_t bytes) {
  const std::uint64_t tenths = bytes * 10 / 1'000'000;
  return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " MB";
}

std::string describe(const FetchJob& job) {
  switch (job.outcome) {
    case Outcome::fetched:
      return "fetched, " + std::to_string(job.bytes) + " bytes";
    case Outcome::not_published:
      return "not published";
    case Outcome::failed:
      break;
  }
  return "failed: " + job.reason;
}

// Undone unless it is committed.
class Transaction {
 public:
  explicit Transaction(Connection& connection) : connection_(connection) { connection.begin_transaction(); }
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  ~Transaction() {
    if (done_) return;
    try {
      connection_.roll_back();
    } catch (const Error&) {  // the error that led here is more important
    }
  }

  void commit() {
    connection_.commit();
    done_ = true;
  }

 private:
  Connection& connection_;
  bool done_ = false;
};

std::unique_ptr<RecordSet> row_of(Connection& connection, const PublishedScript& script) {
  return connection.open("SELECT * FROM scriptengine WHERE scriptname='" + value(script.name) + "'",
                         Connection::Access::updatable);
}

// Contents that no statement can hold are written through the record set.
void replace(Connection& connection, const PublishedScript& script) {
  std::unique_ptr<RecordSet> row = row_of(connection, script);
  if (row->at_end()) {
    connection.execute(insert_into("scriptengine", "scriptname", script.name));
    row = row_of(connection, script);
  }
  row->set_bytes("scriptcontent", to_utf16_bytes(script.content));
  row->set_text("sposition", script.position);
  row->set_number("prio", script.priority);
  row->set_number("svisible", script.visible);
  row->update();
}

}  // namespace

std::shared_ptr<Downloader> make(ConsoleServices& console, std::vector<PublishedFile> files,
                                 const Options& options) {
  return std::make_shared<HttpDownloader>(console, std::move(files), options);
}

std::string HttpDownloader::updateall() {
  LastUpdate update;
  const auto note = [&](std::string problem) {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    update.time = std::chrono::duration_cast<std::chrono::seconds>(now).count();
    update.problem = std::move(problem);
    write_last_update(console_.folder(), update);
  };
  try {
    std::string status = fetch_lists();
    note(failures_.empty() ? std::string() : failures_.front().file + ": " + failures_.front().reason);
    return status;
  } catch (const Error& error) {
    note(without_secrets(error.what()));
    throw;
  }
}

std::string HttpDownloader::fetch_lists() {
  failures_.clear();
  const UpdateAddress address(this->address());
  const fs::path folder = console_folder::downloads(console_.folder());
  std::error_code failure;
  fs::create_directories(folder, failure);
  if (failure) throw Error(failure.value(), folder.string() + ": " + failure.message());
  NewFile::remove_leftovers(folder);

  std::vector<std::unique_ptr<DownloadedFile>> files;
  std::vector<FetchJob> jobs;
  for (const auto& [name, kind] : files_) {
    files.push_back(std::make_unique<DownloadedFile>(folder / name, kind));
    FetchJob& job = jobs.emplace_back();
    job.url = address.of(name);
    job.target = files.back().get();
    job.byte_limit = options_.limits.file_bytes;
  }
  run(address, jobs, "lists");
  flush_folder(folder);
  return conclude(address, jobs);
}

void HttpDownloader::run(const UpdateAddress& address, std::span<FetchJob> jobs,
                         std::string_view what) const {
  FetchSettings settings;
  settings.limits = options_.limits;
  settings.certificates = options_.certificates;
  settings.encrypted_only = address.is_encrypted();
  settings.tick = [&](const FetchProgress& progress) {
    const std::string text = "download " + std::string(what) + ", " + in_megabytes(progress.bytes);
    console_.show_progress({text, progress.finished, progress.files});
    console_.process_events();
  };
  fetch(jobs, settings);
}

// The status of each file. An update that fetched no file at all is an error.
std::string HttpDownloader::conclude(const UpdateAddress& address, const std::vector<FetchJob>& jobs) {
  std::size_t fetched = 0;
  std::string lines;
  for (std::size_t i = 0; i < jobs.size(); ++i) {
    const std::string& name = files_[i].name;
    lines += "\n" + name + ": " + describe(jobs[i]);
    if (jobs[i].outcome == Outcome::fetched) ++fetched;
    if (jobs[i].outcome == Outcome::failed) failures_.push_back({name, jobs[i].reason});
  }
  if (fetched == 0 && !jobs.empty()) {
    const std::string server = "no list file could be fetched from " + address.shown() + ": ";
    if (failures_.empty()) throw Error(ENOENT, server + "it publishes none");
    const Failure first = failures_.front();
    const bool all = failures_.size() == jobs.size();
    throw Error(EIO, server + (all ? first.reason : first.file + ": " + first.reason));
  }
  return std::to_string(fetched) + " of " + std::to_string(jobs.size()) + " list files fetched from " +
         address.shown() + lines;
}

void HttpDownloader::update_db() {
  merge(fetch_scripts());
}

std::vector<PublishedScript> HttpDownloader::fetch_scripts() const {
  const UpdateAddress address(this->address());
  TextTarget target;
  FetchJob job;
  job.url = address.of(script_file);
  job.target = &target;
  job.byte_limit = options_.limits.script_bytes;
  run(address, {&job, 1}, "scripts");
  if (job.outcome != Outcome::fetched) {
    throw Error(EIO, "no scripts could be fetched from " + address.shown() + ": " + describe(job));
  }
  return read_published_scripts(target.text);
}

void HttpDownloader::merge(const std::vector<PublishedScript>& scripts) const {
  const std::shared_ptr<Database> database = console_.components().create<Database>();
  ConnectionHandle connection = database->open_database(console_.data_provider());
  database->CreateTable(connection, "scriptengine",
                        "scriptname nvarchar (255) NOT NULL Primary Key, scriptcontent image NULL, "
                        "sposition nvarchar(255) null, prio int default 0, svisible int default 0");
  Transaction transaction(*connection);
  for (const PublishedScript& script : scripts) replace(*connection, script);
  transaction.commit();
  connection->settle();
}

}  // namespace zrl::downloader
