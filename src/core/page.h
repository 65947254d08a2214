#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "core/contracts/dns_client.h"
#include "core/database_client.h"
#include "core/form.h"

namespace zrl {

// A settings page. Hosts create it, call initialise() each time it is shown, pass the user's acts
// to its controls, and call terminate() when it is left. Nothing is kept between showings.
//
// A page class declares its controls, wires and lays them out in its constructor, and implements
// load(). Its operations are straight sequences of steps. Components that it keeps are members of the type
// Held, which load() makes.
class Page : public DatabaseClient, public Form {
 public:
  Page(Console& console, std::string_view name, std::string_view caption)
      : DatabaseClient(console), Form(console, name, caption) {}

  // Runs the show sequence.
  void initialise();
  // Drops `database` and `conn`, in that order, then what the page holds. Nothing is written back.
  void terminate();

 protected:
  // Translate, connect, load: the order of most pages.
  virtual void show();
  virtual void load() = 0;
  // What a page drops besides the two handles and its held components.
  virtual void hide() {}

  // A check box that is an option: its click writes it at once. load_switches() reads all of them in the
  // order of their binding, or those that are named. A stored value other than 0 and 1 leaves its box alone.
  struct Switch {
    CheckBox& box;
    std::string_view key;
  };
  void bind_switches(std::initializer_list<Switch> switches);
  void load_switches();
  void load_switches(std::initializer_list<CheckBox*> boxes);
  void load_switch(CheckBox& box);
  // A switch that stands in the registry, under this path.
  void load_registry_switch(CheckBox& box, std::string_view path);

  // Gives the timer the interval, in milliseconds, that the option holds; one that a timer can't take is a
  // failed step.
  void set_interval(Timer& timer, std::string_view key, std::int64_t interval_ms);

  // Records the console's version in the option "version".
  void publish_version();

  // Starts a program with operands, which may be anybody's text: each reaches the program as one
  // argument, and one that is empty or would pass for an option makes the step fail. The program's
  // name gets the ending ".exe" if it lacks it.
  bool run_program(std::string_view program, std::vector<std::string> operands, std::string_view folder = {});

  // Look-ups in the DNS, the event loop served meanwhile. One that finds nothing is a failed read and
  // empty: the mail exchanger with the lowest preference, a dot at its end; all of them by ascending
  // preference; the first IPv4 address of a host, or of this machine if the text is blank.
  std::string find_mail_exchanger(std::string_view domain);
  StringList mail_exchangers(std::string_view domain);
  std::string address_of(std::string_view host);

  // The host name of an address; nothing if the look-up failed.
  std::optional<std::string> host_name_of(const Held<DnsClient>& dns, std::string_view address);

  // Runs the action with the button disabled, which keeps a second click away.
  void busy(Button& button, const std::function<void()>& action);
  // The button's click runs this operation of the page so.
  template <typename PageType>
  void bind_busy(Button& button, void (PageType::*operation)()) {
    bind_busy(button, [page = static_cast<PageType*>(this), operation] { (page->*operation)(); });
  }
  void bind_busy(Button& button, std::function<void()> action);

  void process_events();
  Settings& settings() { return console().settings(); }

 private:
  template <typename Interface>
  friend class Held;
  void holds(HeldComponent& held) { held_.push_back(&held); }

  void show_switch(CheckBox& box, Kind kind, std::string_view step, const OptionValue& value);

  std::vector<Switch> switches_;
  std::vector<HeldComponent*> held_;
};

}  // namespace zrl
