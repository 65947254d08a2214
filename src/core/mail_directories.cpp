#include "core/mail_directories.h"

#include <string_view>

#include "core/console.h"

namespace zrl {

SmtpDirectories smtp_directories(Console& console, unsigned instance) {
  Settings& settings = console.settings();
  const std::string branch = "SmtpSvc\\" + std::to_string(instance) + '\\';
  const auto read = [&](std::string_view name) {
    return settings.regread(settings.path_of(branch + std::string(name)));
  };
  return {.drop = read("DropDirectory"),
          .bad_mail = read("BadMailDirectory"),
          .pickup = read("PickupDirectory"),
          .queue = read("QueueDirectory")};
}

}  // namespace zrl
