#include "host/folder.h"

#include <cstdlib>

#include "core/contracts/console_folder.h"
#include "core/contracts/database.h"
#include "core/text/error.h"
#include "core/text/files.h"
#include "core/text/secrets.h"
#include "host/secrets_folder.h"
#include "host/version.h"

namespace zrl {

namespace {

namespace fs = std::filesystem;

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

class LayOut {
 public:
  explicit LayOut(Console& console) : console_(console), settings_(console.settings()) {}

  std::vector<std::string> run() {
    // Others than the owner's group have no business with the accounts and mails in it.
    if (make_folder(console_.folder())) {
      fs::permissions(console_.folder(),
                      fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec);
    }
    // Whoever only shares the folder leaves its permissions to its owner.
    if (is_our_folder(console_.folder())) secure_folder(console_.folder());
    for (const auto part : {console_folder::lists, console_folder::downloads, console_folder::archive,
                            console_folder::scripts}) {
      make_folder(part(console_.folder()));
    }
    make_ini();
    if (update_product_version(console_)) note_value(settings_.product_version_path(), version);
    make_value(settings_.product_version_path(), version);
    make_value(settings_.data_provider_path(), "sqlite:proxy.db");
    make_database();
    return std::move(made_);
  }

 private:
  bool make_folder(const fs::path& path) {
    if (!fs::create_directories(path)) return false;
    made_.push_back("folder " + path.string());
    return true;
  }

  void make_ini() {
    const fs::path path = console_.folder() / "proxy.ini";
    if (fs::exists(path)) return;
    replace_file(path, "product = " + std::string(product_name) + "\n");
    made_.push_back("file " + path.string());
  }

  void make_value(const std::string& path, std::string_view text) {
    if (!settings_.regread(path).empty()) return;
    if (!settings_.regwrite_string(path, text)) throw Error(1, "cannot write the registry value " + path);
    note_value(path, text);
  }

  void note_value(const std::string& path, std::string_view text) {
    made_.push_back("registry value " + path + " = " + std::string(text));
  }

  // Opening it makes what is missing.
  void make_database() {
    const std::string provider = settings_.regread(settings_.data_provider_path());
    console_.components().create<Database>()->open_database(provider);
    made_.push_back("database " + without_secrets(provider));
  }

  Console& console_;
  Settings& settings_;
  std::vector<std::string> made_;
};

}  // namespace

fs::path default_folder() {
  const std::string state = environment("STATE_DIRECTORY");
  if (!state.empty()) return state.substr(0, state.find(':'));
  const std::string data = environment("XDG_DATA_HOME");
  if (data.starts_with('/')) return fs::path(data) / "zrlconsole";
  const std::string home = environment("HOME");
  return fs::path(home.empty() ? "/var/lib" : home + "/.local/share") / "zrlconsole";
}

bool update_product_version(Console& console) {
  Settings& settings = console.settings();
  const std::string path = settings.product_version_path();
  const std::string stored = settings.regread(path);
  return !stored.empty() && stored != version && settings.regwrite_string(path, version);
}

std::vector<std::string> lay_out_folder(Console& console) {
  return LayOut(console).run();
}

}  // namespace zrl
