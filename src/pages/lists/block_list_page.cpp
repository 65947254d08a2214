#include "pages/lists/block_list_page.h"

#include "core/text/error.h"
#include "core/text/list_entry.h"
#include "core/text/text.h"
#include "pages/tools/composer_dialog.h"

namespace zrl {

namespace {

// Where the operator of the default black list receives reports.
constexpr std::string_view report_address = "relays@mirvan.example";

}  // namespace

BlockListPage::BlockListPage(Console& console) : ListPage(console, "rblists", "DNS block lists") {
  bind_lists(Text1, Place::kept, {white_, black_});
  bind_switches({{RBLcheck1, "RBLcheck"}});
  bind_transfer(oben, white_);
  bind_transfer(unten, black_);
  wbladd.on_click = [this] { show_change(add_to(white_, Text1.text())); };
  wblremove.on_click = [this] { show_change(remove_from(white_, Text1.text())); };
  rbladd.on_click = [this] { show_change(add_to(black_, Text1.text())); };
  rblremove.on_click = [this] { show_change(remove_from(black_, Text1.text())); };
  bind_busy(Command1, &BlockListPage::test);
  bind_busy(Command2, &BlockListPage::report_relays);

  List1.set_acts({&Text1, &wbladd, &wblremove});
  List2.set_acts({&Text1, &rbladd, &rblremove});
  Text1.set_expects(expects::domain);
  Text2.set_expects(expects::domain_or_ip_number);

  set_layout(column({
      Text1,
      grow(row({list_frame(Frame1, List1, {wbladd, wblremove, oben}),
                list_frame(Frame2, List2, {rbladd, rblremove, unten})})),
      frame(Frame3, grid({RBLcheck1})),
      frame(Frame4, column({row({grow(Text2), Command1}), Label3})),
      frame(Frame5, row({Command2})),
  }));
}

void BlockListPage::load() {
  fill_lists();
  block_lists_.make();
}

void BlockListPage::fill_lists() {
  fill_list_boxes();
  load_switches();
}

void BlockListPage::show_change(const EntryChange& change) {
  Text1.set_text(change.entry);
  fill_lists();
}

// The field may change, and the page may be left, while the zones are asked.
void BlockListPage::test() {
  const std::string text(trim(Text2.text()));
  const bool is_address = is_ip_address(text);
  MessageContext context;
  (is_address ? context.client_address : context.sender_command) =
      is_address ? text : "mail from: adsf@" + text;
  auto listing = BlockLists::Listing::none;
  std::string zone;
  bool refused = false;
  bool asked = false;
  const Outcome answered = ask(block_lists_, "look up " + text, [&](BlockLists& block_lists) {
    refused = !block_lists.initmodule(context);
    if (refused) {
      throw Error(error_number::invalid_call, "neither an IP number nor a domain");
    }
    asked = true;
    block_lists.Value(is_address ? BlockLists::connect : BlockLists::envelope, listing, zone);
  });
  if (refused) {
    Label3.set_caption(text + translate(" is neither an IP number nor a domain"));
  } else if (asked && !answered) {
    Label3.set_caption(text + translate(" could not be looked up: no RBL/RWL Server answered"));
  } else {
    Label3.set_caption(text + verdict(listing, zone));
  }
  if (answered) {
    say_done("%1", {Label3.caption()});
  } else {
    say_failed("%1 could not be looked up", {text});
  }
}

std::string BlockListPage::verdict(BlockLists::Listing listing, const std::string& zone) {
  switch (listing) {
    case BlockLists::Listing::white:
      return translate(" is WHITELISTED in ") + zone;
    case BlockLists::Listing::black:
      return translate(" is BLACKLISTED in ") + zone;
    case BlockLists::Listing::none:
      break;
  }
  return translate(" is NOT listed in one of your configured RBL/RWL Server");
}

void BlockListPage::report_relays() {
  const StringList relays = rows("iplog", "IPNumber", "status=2").value_or(StringList());
  std::string report;
  for (std::size_t i = 0; i < relays.size(); ++i) {
    report.append(report.empty() ? "" : "\r\n").append("Relay: ").append(relays[i]);
  }
  open_composer(console(), {}, report_address, std::string(product_name) + " relay report", report);
}

}  // namespace zrl
