#include "pages/lists/subnet_page.h"

#include "core/text/list_entry.h"
#include "core/text/text.h"

namespace zrl {

namespace {

// Trims the field and writes the prefix length in digits alone, without a sign or zeros at its front; true if
// the field holds a network. The prefix length is cut off by the trimmed address's length, so a blank before
// the slash leaves the slash in it, and the text is refused.
bool check_subnet(TextField& field) {
  field.set_text(trim(field.text()));
  const std::string text = field.text();
  const std::size_t slash = text.find('/');
  if (slash == text.npos) return false;
  const std::string address(trim(std::string_view(text).substr(0, slash)));
  const auto prefix_length = to_number(text.substr(address.size() + 1));
  constexpr int longest = 32;
  if (!is_ip_address(address) || !prefix_length || *prefix_length < 1 || *prefix_length > longest)
    return false;
  field.set_text(address + "/" + std::to_string(*prefix_length));
  return true;
}

}  // namespace

SubnetPage::SubnetPage(Console& console) : ListPage(console, "subnets", "Subnets") {
  bind_lists(subin, Place::kept, {black_, white_});
  bind_switches({{subnetcheck, "subnetcheck"}});
  bind_transfer(imleft, white_);
  bind_transfer(imright, black_);

  addwhite.on_click = [this] { add(white_, black_); };
  addblack.on_click = [this] { add(black_, white_); };
  removeit.on_click = [this] { remove(); };

  whitesub.set_acts({&subin, &addwhite, &removeit});
  blacksub.set_acts({&subin, &addblack, &removeit});

  set_layout(column({
      row({grow(subin), removeit}),
      grow(row({list_frame(Frame1, whitesub, {addwhite, imleft}),
                list_frame(Frame2, blacksub, {addblack, imright})})),
      frame(Frame3, grid({subnetcheck})),
  }));
}

void SubnetPage::fill_lists() {
  load_switches();
  fill_list_boxes();
}

// Nothing is deleted from the network's own list first, so a network that is added twice is stored twice.
void SubnetPage::add(const List& own, const List& other) {
  if (!check_subnet(subin)) {
    show_error("Please refer to your manual", "Incorrect Syntax");
    return;
  }
  execute(insert_into(own.table, subin.text()));
  own.box.add_item(subin.text());
  execute(delete_from(other.table, subin.text()));
  fill_lists();
}

void SubnetPage::remove() {
  execute(delete_from(list::black_subnets, subin.text()));
  execute(delete_from(list::white_subnets, subin.text()));
  fill_lists();
}

}  // namespace zrl
