#pragma once

#include <memory>

#include "core/contracts/check_plugin.h"
#include "core/contracts/console_services.h"

namespace zrl::checks {

// The checks of keywords, and the host that runs checks. The lists and options are read from the console's
// database when a message begins (initmodule(), which raises zrl::Error if they cannot be read). Of a text
// the first 16 MiB are searched, and the regular expressions of a list may take five seconds together, after
// which the check raises zrl::Error. Positions and commands are ignored. The objects belong to the console's
// thread and must not outlive the console.

// Checks a body, any bytes in UTF-8 or not, for the body keywords (table `words`). The answer is the
// service's reply, a colon, and the keyword that was found.
std::shared_ptr<CheckPlugin> make_body_check(ConsoleServices& console);

// Checks the first Subject field of a header (RFC 5322). The lists are searched in the subject with its
// encoded words decoded (RFC 2047) and then in the subject as it was sent; the rules see the decoded one
// only. In this order:
//
// - a word of the white list `subjectwhite` lets the subject pass, while the option `enablesubjectwhite` is
// on;
// - a keyword of the table `swords` rejects it;
// - the rules that are on reject it: more than 110 characters (`checklongsubject`), an empty or missing
// subject
//   (`checkshortsubject`), as many blanks in a row as `subjectspace` says (values below 3 switch this off).
//
// The answer is the service's reply to the first that rejects, with the keyword if it was one.
std::shared_ptr<CheckPlugin> make_subject_check(ConsoleServices& console);

// Runs any check that is registered with the console, by its program id. The registry must outlive the host.
std::shared_ptr<PluginHost> make_plugin_host(ConsoleServices& console);

}  // namespace zrl::checks
