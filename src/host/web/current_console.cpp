#include "host/web/current_console.h"

#include "core/contracts/registry.h"
#include "core/text/text.h"
#include "host/web/outgoing.h"

namespace zrl::web {

namespace {

std::string language_setting(Console& console) {
  if (!console.components().has(Registry::program_id)) return {};
  return lower(trim(console.settings().regread(console.settings().language_path())));
}

}  // namespace

void CurrentConsole::start() {
  console_ = std::make_unique<Console>(settings_.folder, host_);
  console_->share_lists(settings_.lists);
  if (settings_.register_components) settings_.register_components(*console_);
  language_at_start_ = language_setting(*console_);
  entries_ = std::make_unique<EntryFinder>(*console_, settings_.pages);
  reporter_.watch(*console_);
  captions_.clear();
  const std::string language = console_->localisation().current_language();
  output_.language_is(language.empty() ? "english" : language);
}

void CurrentConsole::end() {
  entries_.reset();
  console_.reset();
}

bool CurrentConsole::speaks_otherwise() {
  return language_setting(*console_) != language_at_start_;
}

bool CurrentConsole::renew() {
  if (!speaks_otherwise()) return false;
  end();
  start();
  return true;
}

const std::string& CurrentConsole::captions() {
  if (captions_.empty()) captions_ = captions_message(*console_, settings_.pages);
  return captions_;
}

}  // namespace zrl::web
