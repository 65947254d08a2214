#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/catalogue.h"
#include "core/activity.h"
#include "core/console.h"
#include "core/contracts/host.h"
#include "core/controls.h"
#include "host/web/list_filter.h"
#include "host/web/offered_files.h"
#include "host/web/session_output.h"
#include "host/web/shown_form.h"
#include "host/web/terminal.h"

// The messages to the browser as JSON texts (docs/protocol.md).
namespace zrl::web {

// The number of a refused message.
struct MessageNumber {
  std::optional<std::uint64_t> seq = {};
  std::optional<std::uint64_t> request = {};
};

struct WindowOf {
  std::uint64_t start;
  std::uint64_t count;
};

inline constexpr std::uint64_t longest_window = 500;

// `open` is the name of the page that is shown, or empty, `query` what it was opened with.
std::string hello_message(Console& console, const TabIdentity& identity, std::span<const PageEntry> pages,
                          std::string_view open, std::string_view query);
// The form, or its changes; from then on they count as sent.
std::string form_message(ShownForm& shown, std::string_view caption);
std::optional<std::string> change_message(ShownForm& shown, std::uint64_t ack, std::string_view caption);
std::string closed_message(const ShownForm& shown);
// Where a row that was asked for is; nothing if the view lacks it.
struct Sought {
  std::optional<std::uint64_t> row;
};
// Contains fewer rows than asked for if the rows are long. `sought` has a value only if a row was asked for.
std::string rows_message(ShownForm& shown, const ItemsControl& list, std::uint64_t request, WindowOf window,
                         const ListView& view, const std::optional<Sought>& sought = {});
std::string box_message(std::uint64_t id, const MessageBox& box);
std::string unbox_message(std::uint64_t id);
std::string busy_message(bool on, std::string_view text, std::uint64_t done, std::uint64_t total);
// How much of the activity record has been told.
struct Reported {
  std::uint64_t entries = 0;
  std::uint64_t failures = 0;
  std::uint64_t said = 0;
};
// The newest of the entries that have not been told, and the sentences; `showing` if they come of showing the
// page.
std::string activity_message(const ActivityRecord& record, const Reported& reported, std::string_view page,
                             bool showing);
std::string record_message(const ActivityRecord& record, std::uint64_t request, WindowOf window);
std::string captions_message(Console& console, std::span<const PageEntry> pages);
// `fresh` if it has just been started.
std::string terminal_message(std::uint64_t id, std::string_view title, bool fresh);
// `position` is how many bytes came before.
std::string output_message(std::uint64_t id, std::uint64_t position, std::string_view bytes);
std::string ended_message(std::uint64_t id, const Terminal::End& end);
std::string gone_message(std::uint64_t id);
std::string leave_message();
std::string go_message(std::string_view page, std::string_view query);
// `awaited` if the user has asked for just this file.
std::string file_message(const Offer& offer, bool awaited);
std::string files_message(const std::vector<Offer>& offers);
std::string done_message(std::uint64_t seq);
std::string error_message(const MessageNumber& number, std::string_view code, std::string_view text);
std::string unfit_message(std::uint64_t seq, std::string_view form, std::string_view control,
                          std::string_view text);

}  // namespace zrl::web
