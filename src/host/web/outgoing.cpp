#include "host/web/outgoing.h"

#include <algorithm>
#include <boost/json.hpp>

#include <sodium.h>

#include "core/text/time_stamp.h"
#include "core/text/utf8.h"

namespace zrl::web {

namespace {

namespace json = boost::json;

constexpr std::uint64_t entries_an_action = 50;
constexpr std::size_t longest_row = 16 << 10;
constexpr std::size_t longest_entry = 8 << 10;
constexpr std::size_t longest_rows = 2 << 20;

json::string valid(std::string_view text) {
  return is_valid_utf8(text) ? json::string(text) : json::string(valid_utf8(text));
}

// At most `limit` bytes of it, not ending within a character.
json::string valid_part(std::string_view text, std::size_t limit) {
  if (text.size() <= limit) return valid(text);
  json::string part = valid(cut_between_characters(text, limit));
  part += "\u2026";
  return part;
}

json::array entries_json(const ActivityRecord& record, std::uint64_t from, std::uint64_t to) {
  json::array entries;
  for (; from < to; ++from) {
    const ActivityRecord::Entry entry = record[from];
    json::object told{{"time", local_time(entry.time, "%H:%M:%S")},
                      {"kind", name_of(entry.kind)},
                      {"text", valid_part(entry.public_text, longest_entry)},
                      {"ok", entry.ok},
                      {"error", valid_part(entry.error, longest_entry)}};
    if (entry.expected) told["expected"] = true;
    if (entry.routine) told["routine"] = true;
    entries.push_back(std::move(told));
  }
  return entries;
}

json::array said_json(const ActivityRecord& record, std::uint64_t from) {
  json::array sentences;
  for (from = std::max(from, record.first_said()); from < record.total_said(); ++from) {
    const ActivityRecord::Said& said = record.said(from);
    sentences.push_back(json::object{{"text", valid(said.text)}, {"tone", name_of(said.tone)}});
  }
  return sentences;
}

void add_captions(Console& console, const Form& form, json::array& captions) {
  for (const Control* control : form.controls()) {
    for (const Property property : {Property::caption, Property::tool_tip}) {
      if (!control->has(property)) continue;
      const auto text = std::get<std::string_view>(control->get(property));
      if (text.empty()) continue;
      const std::string shown = console.localisation().translate(text);
      json::object caption{{"control", control->name()}, {"text", valid(shown)}};
      if (const Frame* frame = control->container(); frame != nullptr && frame->caption() != text) {
        caption["frame"] = valid(console.localisation().translate(frame->caption()));
      }
      captions.push_back(std::move(caption));
    }
  }
}

json::value found_json(ShownForm& shown, const ItemsControl& list, const ListView& view,
                       std::optional<std::uint64_t> row) {
  if (!row || *row >= list.items().size()) return nullptr;
  json::object found{{"index", *row}, {"position", nullptr}};
  if (const auto position = shown.filter.position(list, view, *row)) found["position"] = *position;
  return found;
}

json::object offer_json(const Offer& offer) {
  return {{"token", offer.token}, {"name", valid(offer.name)}, {"size", offer.size}};
}

}  // namespace

std::string hello_message(Console& console, const TabIdentity& identity, std::span<const PageEntry> pages,
                          std::string_view open, std::string_view query) {
  json::array entries;
  for (const PageEntry& page : pages) {
    entries.push_back(json::object{{"name", page.name},
                                   {"section", valid(page.group)},
                                   {"group", valid(console.localisation().translate(page.group))},
                                   {"title", valid(console.localisation().translate(page.title))}});
  }
  const std::string language = console.localisation().current_language();
  json::object message{{"type", "hello"},
                       {"account", valid(identity.account)},
                       {"tab", identity.tab},
                       {"language", language.empty() ? json::string("english") : valid(language)},
                       {"product", product_name},
                       {"version", valid(console.settings().product_version())},
                       {"pages", std::move(entries)},
                       {"open", nullptr}};
  if (!open.empty()) message["open"] = open;
  if (!query.empty()) message["query"] = valid(query);
  return json::serialize(message);
}

std::string form_message(ShownForm& shown, std::string_view caption) {
  json::object message{
      {"type", "form"}, {"form", shown.id}, {"dialog", shown.dialog}, {"modal", shown.modal}};
  for (auto& [name, value] : shown.changes.whole()) message[name] = std::move(value);
  message["caption"] = valid(caption);
  shown.announced = true;
  return json::serialize(message);
}

std::optional<std::string> change_message(ShownForm& shown, std::uint64_t ack, std::string_view caption) {
  std::optional<json::object> changes = shown.changes.changes();
  if (!changes) return {};
  json::object message{{"type", "change"}, {"form", shown.id}, {"ack", ack}};
  for (auto& [name, value] : *changes) message[name] = std::move(value);
  if (message.contains("caption")) message["caption"] = valid(caption);
  return json::serialize(message);
}

std::string closed_message(const ShownForm& shown) {
  json::array unsaved;
  for (const Control* control : shown.form->controls()) {
    if (control->unsaved() || control->set_aside()) unsaved.push_back(json::value(control->name()));
  }
  json::object message{{"type", "closed"}, {"form", shown.id}};
  if (!unsaved.empty()) message["unsaved"] = std::move(unsaved);
  return json::serialize(message);
}

std::string rows_message(ShownForm& shown, const ItemsControl& list, std::uint64_t request, WindowOf window,
                         const ListView& view, const std::optional<Sought>& sought) {
  const StringList& items = list.items();
  const bool words =
      list.kind() == ControlKind::combo_box && static_cast<const ComboBox&>(list).style().words;
  const std::vector<std::uint32_t>* matches = view.is_whole() ? nullptr : &shown.filter.rows(list, view);
  const std::uint64_t length = matches == nullptr ? items.size() : matches->size();
  const std::uint64_t start = std::min(window.start, length);
  const std::uint64_t end = start + std::min({window.count, longest_window, length - start});
  json::array rows;
  json::array indexes;
  std::size_t bytes = 0;
  for (std::uint64_t i = start; i < end && bytes < longest_rows; ++i) {
    const std::uint64_t index = matches == nullptr ? i : (*matches)[i];
    if (words) {
      rows.push_back(valid(shown.form->console().localisation().translate(items[index])));
    } else {
      rows.push_back(valid_part(items[index], longest_row));
    }
    bytes += rows.back().get_string().size();
    if (matches != nullptr) indexes.push_back(index);
  }
  json::object message{{"type", "rows"},
                       {"form", shown.id},
                       {"control", list.name()},
                       {"request", request},
                       {"revision", list.revision(Property::items)},
                       {"filter", view.filter},
                       {"order", name_of(view.order)},
                       {"length", length},
                       {"start", start},
                       {"rows", std::move(rows)}};
  if (matches != nullptr) message["indexes"] = std::move(indexes);
  if (sought) message["found"] = found_json(shown, list, view, sought->row);
  return json::serialize(message);
}

std::string box_message(std::uint64_t id, const MessageBox& box) {
  json::array buttons{"ok"};
  if (!box.other.empty()) buttons.push_back("other");
  if (box.asks()) buttons.push_back("cancel");
  json::object message{{"type", "box"},
                       {"id", id},
                       {"title", valid(box.title)},
                       {"text", valid(box.text)},
                       {"style", static_cast<int>(box.style)},
                       {"buttons", std::move(buttons)}};
  if (!box.act.empty()) message["act"] = valid(box.act);
  if (!box.other.empty()) message["other"] = valid(box.other);
  return json::serialize(message);
}

std::string unbox_message(std::uint64_t id) {
  return json::serialize(json::object{{"type", "unbox"}, {"id", id}});
}

std::string busy_message(bool on, std::string_view text, std::uint64_t done, std::uint64_t total) {
  return json::serialize(
      json::object{{"type", "busy"}, {"on", on}, {"text", valid(text)}, {"done", done}, {"total", total}});
}

std::string activity_message(const ActivityRecord& record, const Reported& reported, std::string_view page,
                             bool showing) {
  const std::uint64_t total = record.total();
  const std::uint64_t newest = total - std::min(total, entries_an_action);
  const std::uint64_t from = std::max({reported.entries, newest, record.first()});
  return json::serialize(json::object{{"type", "activity"},
                                      {"first", from},
                                      {"total", total},
                                      {"failed", record.failures() - reported.failures},
                                      {"entries", entries_json(record, from, total)},
                                      {"said", said_json(record, reported.said)},
                                      {"page", page},
                                      {"showing", showing}});
}

std::string record_message(const ActivityRecord& record, std::uint64_t request, WindowOf window) {
  const std::uint64_t start = std::clamp(window.start, record.first(), record.total());
  const std::uint64_t count = std::min({window.count, longest_window, record.total() - start});
  return json::serialize(json::object{{"type", "record"},
                                      {"request", request},
                                      {"start", start},
                                      {"total", record.total()},
                                      {"entries", entries_json(record, start, start + count)}});
}

std::string captions_message(Console& console, std::span<const PageEntry> pages) {
  json::object all;
  for (const PageEntry& entry : pages) {
    json::array captions;
    try {
      add_captions(console, *entry.make(console), captions);
    } catch (const std::exception&) {
      captions.clear();  // a page that cannot be made cannot be found either
    }
    all[entry.name] = std::move(captions);
  }
  return json::serialize(json::object{{"type", "captions"}, {"pages", std::move(all)}});
}

std::string terminal_message(std::uint64_t id, std::string_view title, bool fresh) {
  return json::serialize(
      json::object{{"type", "terminal"}, {"id", id}, {"title", valid(title)}, {"fresh", fresh}});
}

std::string output_message(std::uint64_t id, std::uint64_t position, std::string_view bytes) {
  std::string data(sodium_base64_encoded_len(bytes.size(), sodium_base64_VARIANT_ORIGINAL), '\0');
  ::sodium_bin2base64(data.data(), data.size(), reinterpret_cast<const unsigned char*>(bytes.data()),
                      bytes.size(), sodium_base64_VARIANT_ORIGINAL);
  data.pop_back();  // the zero byte
  return json::serialize(
      json::object{{"type", "output"}, {"id", id}, {"position", position}, {"data", std::move(data)}});
}

std::string ended_message(std::uint64_t id, const Terminal::End& end) {
  return json::serialize(
      json::object{{"type", "ended"}, {"id", id}, {end.signalled ? "signal" : "status", end.number}});
}

std::string gone_message(std::uint64_t id) {
  return json::serialize(json::object{{"type", "gone"}, {"id", id}});
}

std::string leave_message() {
  return json::serialize(json::object{{"type", "leave"}});
}

std::string go_message(std::string_view page, std::string_view query) {
  return json::serialize(json::object{{"type", "go"}, {"page", valid(page)}, {"query", valid(query)}});
}

std::string file_message(const Offer& offer, bool awaited) {
  json::object message = offer_json(offer);
  message["type"] = "file";
  if (awaited) message["awaited"] = true;
  return json::serialize(message);
}

std::string files_message(const std::vector<Offer>& offers) {
  json::array files;
  for (const Offer& offer : offers) files.push_back(offer_json(offer));
  return json::serialize(json::object{{"type", "files"}, {"files", std::move(files)}});
}

std::string done_message(std::uint64_t seq) {
  return json::serialize(json::object{{"type", "done"}, {"seq", seq}});
}

std::string error_message(const MessageNumber& number, std::string_view code, std::string_view text) {
  json::object message{{"type", "error"}, {"code", code}, {"text", valid(text)}};
  if (number.seq) message["seq"] = *number.seq;
  if (number.request) message["request"] = *number.request;
  return json::serialize(message);
}

std::string unfit_message(std::uint64_t seq, std::string_view form, std::string_view control,
                          std::string_view text) {
  return json::serialize(json::object{{"type", "error"},
                                      {"seq", seq},
                                      {"code", "unfit"},
                                      {"text", valid(text)},
                                      {"form", form},
                                      {"control", control}});
}

}  // namespace zrl::web
