#include "core/settings.h"

#include <algorithm>

#include "core/console.h"
#include "core/contracts/registry.h"
#include "core/text/files.h"
#include "core/text/secrets.h"
#include "core/text/text.h"

namespace zrl {

namespace {

using Kind = ActivityRecord::Kind;
using Step = Console::Step;

std::string join(std::string_view left, std::string_view separator, std::string_view right) {
  std::string result(left);
  return result.append(separator).append(right);
}

}  // namespace

std::string product_key_in(std::string_view ini_text) {
  std::string text(ini_text);
  std::erase(text, ' ');
  std::string_view rest = trim(text);
  const std::size_t equals = rest.rfind('=');
  if (equals != rest.npos) rest = trim(rest.substr(equals + 1));
  std::string key(rest);
  std::erase_if(key, [](char c) { return c == '\r' || c == '\n'; });
  key = trim(key);
  return key.empty() ? std::string(product_name) : key;
}

const std::string& Settings::product_key() {
  if (!product_key_.empty()) return product_key_;
  // A missing file is ordinary: most installations have the default key.
  std::error_code failure;
  const std::filesystem::path path = console_.folder() / "proxy.ini";
  std::string text;
  if (std::filesystem::exists(path, failure)) {
    console_.attempt(Kind::file, "proxy.ini", Step::read, [&] { text = read_file(path); });
  }
  product_key_ = product_key_in(text);
  return product_key_;
}

std::string Settings::path_of(std::string_view name) {
  return join("HKLM\\SOFTWARE\\" + product_key(), "\\", name);
}

std::string Settings::regread(std::string_view path) {
  std::string result;
  console_.attempt(Kind::registry, join("read", " ", path), Step::read, [&] {
    result = console_.components().create<Registry>()->regread(path).value_or(std::string());
  });
  return result;
}

std::optional<std::int64_t> Settings::changed_at(std::string_view path) {
  std::optional<std::int64_t> result;
  console_.attempt(Kind::registry, join("read", " ", path), Step::read,
                   [&] { result = console_.components().create<Registry>()->changed_at(path); });
  return result;
}

bool Settings::regwrite_string(std::string_view path, std::string_view text) {
  return console_.attempt(Kind::registry, join(path, "=", without_secrets(text)), Step::write,
                          [&] { console_.components().create<Registry>()->write_string(path, text); });
}

bool Settings::regwrite_dword(std::string_view path, std::uint32_t number) {
  return console_.attempt(Kind::registry, join(path, "=", std::to_string(number)), Step::write,
                          [&] { console_.components().create<Registry>()->write_dword(path, number); });
}

void Settings::raise_again(std::string_view flag_path) {
  console_.attempt(Kind::registry, join(flag_path, "=", "1"), Step::read, [&] {
    const auto registry = console_.components().create<Registry>();
    if (registry->regread(flag_path) != "1") registry->write_dword(flag_path, 1);
  });
}

bool Settings::delete_value(std::string_view path) {
  return console_.attempt(Kind::registry, join("delete", " ", path), Step::write,
                          [&] { console_.components().create<Registry>()->delete_value(path); });
}

std::string Settings::product_version() {
  return std::string(trim(regread(product_version_path())));
}

SmtpDirectories Settings::smtp_directories(unsigned instance) {
  const std::string branch = "SmtpSvc\\" + std::to_string(instance) + '\\';
  const auto read = [&](std::string_view name) { return regread(path_of(branch + std::string(name))); };
  return {.drop = read("DropDirectory"),
          .bad_mail = read("BadMailDirectory"),
          .pickup = read("PickupDirectory"),
          .queue = read("QueueDirectory")};
}

}  // namespace zrl
