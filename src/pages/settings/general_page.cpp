#include "pages/settings/general_page.h"

#include "core/text/text.h"
#include "pages/lists/remote_update.h"

namespace zrl {

namespace {

// Minutes between two automatic imports: the value that the check box stores.
constexpr std::int16_t import_interval = 60;
// Stored intervals below this one are raised to `import_interval`.
constexpr std::int16_t least_interval = 5;

}  // namespace

GeneralPage::GeneralPage(Console& console) : Page(console, "general", "General") {
  bind_switches({
      {mx, "checkmx"},
      {removereceipts, "removereceipts"},
      {comparemimewithsmtp, "comparemimewithsmtp"},
      {checkforat, "checkforat"},
      {Check1, "autORtest"},
      {protokoll, "protokoll"},
      {arcbody, "arcbody"},
      {enablepipe, "enablepipe"},
      {ehlo, "ehlo"},
      {simulation, "simulation"},
      {cutconnection, "cutconnection"},
      {checkhelovalid, "checkhelovalid"},
      {greylisting, "greylist"},
      {checkmid, "checkmid"},
      {checkheloip, "checkheloip"},
      {blockndr, "blockndr"},
  });
  mx.on_click = [this] { click_mx(); };
  autoimport.on_click = [this] {
    const bool on = autoimport.checked();
    set_option("autoimport", on ? import_interval : 0);
    say_switched(autoimport, on);
  };
  when_not_stored("debug", [this] { load_debugging(); });
  when_not_stored("autoimport", [this] { show_autoimport(); });
  blockndr.on_click = [this] { click_blockndr(); };
  debugging.on_click = [this] { click_debugging(); };
  Combo1.on_click = [this] { choose_language(); };
  Combo1.on_change = [this] { choose_language(); };
  Command1.on_click = [this] { update_all(); };
  Timer1.on_tick = [this] { process_events(); };

  set_layout(column({
      headline,
      Combo1,
      frame(Frame1, grid({mx, comparemimewithsmtp, checkforat, checkmid, blockndr, Check1})),
      frame(Frame2, grid({ehlo, checkhelovalid, checkheloip})),
      frame(Frame3, grid({enablepipe, greylisting, cutconnection, simulation})),
      frame(Frame4, grid({protokoll, debugging, arcbody, removereceipts})),
      frame(Frame5, column({grid({autoimport}), row({Command1})})),
  }));
}

void GeneralPage::show() {
  connect_database();
  headline.set_caption("Welcome to " + std::string(product_name) + " " +
                       settings().regread(settings().product_version_path()));
  translate_controls();
  Combo1.add_item("english");
  Combo1.add_item("german");
  load();
}

void GeneralPage::load() {
  load_settings();
}

void GeneralPage::load_settings() {
  Combo1.set_text(console().localisation().current_language());
  if (Combo1.text().empty()) Combo1.set_text(lower(settings().regread(settings().language_path())));

  load_switches({&mx, &removereceipts});
  read_option("checkbody");  // part of the fixed sequence, although no control shows it
  load_switches({&comparemimewithsmtp, &checkforat});
  process_events();
  load_switches({&Check1, &protokoll, &arcbody, &enablepipe, &ehlo, &simulation});
  load_autoimport();
  load_switches({&cutconnection, &checkhelovalid, &greylisting, &checkmid, &checkheloip, &blockndr});
  load_debugging();
  publish_version();
}

void GeneralPage::load_autoimport() {
  std::int16_t interval = read_number("autoimport").value_or(import_interval);
  if (interval < 1) interval = 0;
  if (interval > 0 && interval < least_interval) interval = import_interval;
  // Without a connection the option is unknown, and the box keeps its initial state.
  if (conn) autoimport.set_checked(interval > 0);
  process_events();
  set_option("autoimport", interval);
}

void GeneralPage::show_autoimport() {
  if (const auto interval = read_number("autoimport")) autoimport.set_checked(*interval > 0);
}

void GeneralPage::load_debugging() {
  const auto registry_value = to_number(settings().regread(settings().debug_path()));
  const auto option = read_number("debug");
  debugging.set_checked(registry_value == 1 && option == 1);
}

void GeneralPage::choose_language() {
  console().localisation().store_language(lower(trim(Combo1.text())));
}

void GeneralPage::click_mx() {
  const bool on = mx.checked();
  set_option("checkmx", mx.value());
  set_option("checksmtpmx", mx.value());
  set_option("checkmimemx", mx.value());
  say_switched(mx, on);
}

void GeneralPage::click_blockndr() {
  const bool on = blockndr.checked();
  set_option("blockndr", blockndr.value());
  if (blockndr.checked()) set_option("autoBLheader", 0);
  say_switched(blockndr, on);
}

void GeneralPage::click_debugging() {
  const bool on = debugging.checked();
  set_option("debug", debugging.value());
  settings().regwrite_dword(settings().debug_path(), debugging.checked() ? 1 : 0);
  say_switched(debugging, on);
}

void GeneralPage::update_all() {
  Command1.set_enabled(false);
  process_events();
  std::string status = "0";
  const auto downloader = component<Downloader>();
  process_events();
  const bool fetched = fetch_lists(*this, downloader, status);
  if (!fetched) say_not_fetched(*this);
  process_events();
  const MergedLists merged = merge_lists(*this, console(), all_list_files());
  if (fetched) say_merged(*this, merged);
  process_events();
  process_events();
  load_settings();
  Command1.set_enabled(true);
}

}  // namespace zrl
