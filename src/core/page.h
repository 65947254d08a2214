#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "core/contracts/dns_client.h"
#include "core/contracts/entry_search.h"
#include "core/database_client.h"
#include "core/form.h"

namespace zrl {

// A settings page. Hosts create and own it, call initialise() each time it is shown, pass the user's acts to
// its controls, and call terminate() when it is left. It must not be destroyed while one of its events runs.
// Handles and components are not kept between showings.
//
// A page class declares its controls, wires them and lays them out in its constructor, and implements load().
// Its operations are straight sequences of steps, none of which throws. Components that it keeps are members
// of the type Held, which load() makes.
class Page : public DatabaseClient, public Form {
 public:
  Page(Console& console, std::string_view name, std::string_view caption)
      : DatabaseClient(console), Form(console, name, caption) {}

  // Runs show() as an event. Never throws; the page is shown whatever failed.
  void initialise();
  // Sets the query and runs open_query() as an event; to be called after initialise().
  void show_query(std::string_view query);
  // Runs hide(), then drops `database` and `conn`, in that order, then the held components. Nothing is
  // written back.
  void terminate();

  // Hosts call it every few seconds while somebody looks at the page: marks the list boxes whose rows others
  // have changed (ListBox::stale()). It reads no list, and records nothing unless it fails.
  virtual void look_for_changes() {}

  // The lists that its boxes show as they are, for searches over the lists of all pages.
  struct ListPlace {
    const ListBox* box;
    EntrySearch::List list;
  };
  virtual std::vector<ListPlace> list_places() const { return {}; }

 protected:
  // Translate, connect, load: the order of most pages. If connecting fails, a message box says so, and load()
  // runs all the same; its steps on the database then fail.
  virtual void show();
  // Makes the held components and fills the controls.
  virtual void load() = 0;
  // The page was opened by a link, or an address that someone kept: fills its controls from the query and
  // reads what they ask for. It must not write, whatever the query is; it comes from strangers. Not called
  // without a query. The default ignores it.
  virtual void open_query(std::string_view query);
  // What a page drops besides the two handles and its held components.
  virtual void hide() {}

  // A check box that shows an option: a click writes it at once. load_switches() reads all of them in the
  // order of their binding, or those that are given, which must have been bound. A stored value other than 0
  // and 1 is a failed step and leaves its box unchanged. If the option could not be written, the box shows
  // the stored value again, also on a page with a click of its own. `key` is not copied: a literal.
  struct Switch {
    CheckBox& box;
    std::string_view key;
  };
  void bind_switches(std::initializer_list<Switch> switches);
  void load_switches();
  void load_switches(std::initializer_list<CheckBox*> boxes);
  void load_switch(CheckBox& box);
  // The same for a control that shows an option in another way: `show` reads it again if it could not be
  // written. `key` is a literal.
  void when_not_stored(std::string_view key, std::function<void()> show);
  // A text field that shows the option `key`, a literal. Nothing is read or written by it: it tells which
  // field is meant when somebody else has stored another value, and shows that if it stays.
  void bind_text(TextField& field, std::string_view key);
  // The same for a value in the registry, under this full path. Nothing is bound to the click.
  void load_registry_switch(CheckBox& box, std::string_view path);

  // Gives the timer the interval, in milliseconds, that the caller has read from the option `key`, under
  // which a failure is recorded. An interval outside 0 to 65,535 is a failed step and leaves the timer
  // unchanged.
  void set_interval(Timer& timer, std::string_view key, std::int64_t interval_ms);

  // Writes the version of the product, a value of the registry, to the option "version".
  void publish_version();

  // Starts a program, without waiting for its end, with operands that may come from strangers: each reaches
  // the program as one argument. One that is empty, begins with "-" or holds a zero byte makes the step fail.
  // The program's name gets the ending ".exe" if it lacks it. An empty folder means the console's own. True
  // if the host has started it; recorded as a write either way.
  bool run_program(std::string_view program, std::vector<std::string> operands, std::string_view folder = {});

  // Look-ups by the console's NameLookup, the event loop served meanwhile, so arguments must not be texts of
  // controls or lists that may change. One that finds nothing is a failed read and returns an empty result.
  // In this order: the mail exchanger with the lowest preference number, with a dot at its end; all of them
  // by ascending preference; the first IPv4 address of a host, or of this machine if the text is blank.
  std::string find_mail_exchanger(std::string_view domain);
  StringList mail_exchangers(std::string_view domain);
  std::string address_of(std::string_view host);

  // The host name of an address; nothing if the look-up failed.
  std::optional<std::string> host_name_of(const Held<DnsClient>& dns, std::string_view address);

  // Runs the action with the button disabled, which prevents a second click while the event loop is served.
  // The button is enabled afterwards, whatever it was before; what the action lets escape is recorded.
  void busy(Button& button, const std::function<void()>& action);
  // Lets the button's click run this operation of the page in that way.
  template <typename PageType>
  void bind_busy(Button& button, void (PageType::*operation)()) {
    bind_busy(button, [page = static_cast<PageType*>(this), operation] { (page->*operation)(); });
  }
  void bind_busy(Button& button, std::function<void()> action);

  // Runs the events that are pending; the page's controls may have changed when it returns.
  void process_events();
  Settings& settings() { return console().settings(); }

 private:
  template <typename Interface>
  friend class Held;
  void holds(HeldComponent& held) { held_.push_back(&held); }

  void not_stored(std::string_view key) override;
  void show_newer(std::string_view key) override;
  std::string name_of_option(std::string_view key) override;

  struct ShownOption {
    std::string_view key;
    std::function<void()> show;
  };

  struct ShownText {
    TextField& field;
    std::string_view key;
  };

  std::vector<Switch> switches_;
  std::vector<ShownText> shown_texts_;
  std::vector<ShownOption> shown_options_;
  std::vector<HeldComponent*> held_;
};

}  // namespace zrl
