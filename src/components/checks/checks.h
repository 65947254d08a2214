#pragma once

#include <memory>

#include "core/contracts/check_plugin.h"
#include "core/contracts/console_services.h"

namespace zrl::checks {

// Looks for the body keywords (table `words`). The answer is the service's reply with the keyword.
std::shared_ptr<CheckPlugin> make_body_check(ConsoleServices& console);

// Checks the first Subject field of a header, encoded words decoded: a word of the subject white list
// (while `enablesubjectwhite` is on) lets it pass; else the subject keywords (table `swords`), then the
// rules that are on: more than 110 characters (`checklongsubject`), none (`checkshortsubject`), and as
// many blanks in a row as `subjectspace` says, from 3 on. The answer is the service's reply.
std::shared_ptr<CheckPlugin> make_subject_check(ConsoleServices& console);

// Runs any check that the console has, by its program id.
std::shared_ptr<PluginHost> make_plugin_host(ConsoleServices& console);

}  // namespace zrl::checks
