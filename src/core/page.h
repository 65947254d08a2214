#pragma once

#include <functional>
#include <initializer_list>
#include <map>
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
// load(). Its operations are straight sequences of steps.
class Page : public DatabaseClient, public Form {
 public:
  Page(Console& console, std::string_view name, std::string_view caption)
      : DatabaseClient(console), Form(console, name, caption) {}

  // Runs the show sequence.
  void initialise();
  // Drops `database` and `conn`, in that order. Nothing is written back.
  void terminate();

 protected:
  // Translate, connect, load: the order of most pages.
  virtual void show();
  virtual void load() = 0;
  // What a page drops besides the two handles.
  virtual void hide() {}

  // A check box that is an option: load_switches() reads it, its click writes it at once.
  struct Switch {
    CheckBox& box;
    std::string_view key;
  };
  void bind_switches(std::initializer_list<Switch> switches);
  void load_switch(CheckBox& box);
  void load_switches(std::initializer_list<CheckBox*> boxes);

  // Records the console's version in the option "version".
  void publish_version();

  // Reads a whole column into a list box; a read that fails leaves the box empty.
  void fill(ListBox& box, Literal table, Literal column, const Statement& condition = {});

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

  // The host name of an address, by the DNS component that create_dns_client() made and terminate()
  // drops; nothing if the look-up failed.
  void create_dns_client() { dns_ = component<DnsClient>(); }
  std::optional<std::string> host_name_of(std::string_view address);

  // Runs the action with the button disabled, which keeps a second click away.
  void busy(Button& button, const std::function<void()>& action);

  void process_events();
  Settings& settings() { return console().settings(); }

 private:
  std::map<const CheckBox*, std::string_view> switch_keys_;
  std::shared_ptr<DnsClient> dns_;
};

}  // namespace zrl
