#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "core/contracts/check_plugin.h"
#include "core/contracts/components.h"
#include "core/contracts/database.h"

namespace zrl {

// What the checks of keywords need of the console.
struct CheckSurroundings {
  std::function<std::shared_ptr<Database>()> database;
  std::function<std::string()> provider;  // the connection string
  // What a list entry that is a regular expression matches first in the text; empty if nothing.
  std::function<std::string(std::string_view entry, std::string_view text)> match;
};

using CheckFactory = std::function<std::shared_ptr<CheckPlugin>()>;

// Looks for the body keywords (table `words`). The answer is the service's reply with the keyword.
CheckFactory make_body_check_factory(CheckSurroundings surroundings);

// Checks the first Subject field of a header, encoded words decoded: a word of the subject white list
// (while `enablesubjectwhite` is on) lets it pass; else the subject keywords (table `swords`), then the
// rules that are on: more than 110 characters (`checklongsubject`), none (`checkshortsubject`), and as
// many blanks in a row as `subjectspace` says, from 3 on. The answer is the service's reply.
CheckFactory make_subject_check_factory(CheckSurroundings surroundings);

// `components` must outlive what the factory makes.
std::function<std::shared_ptr<PluginHost>()> make_plugin_transport_factory(
    const ComponentRegistry& components);

}  // namespace zrl
