#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/console.h"

namespace zrl {

template <typename Interface>
class Held;

// The steps that need no database. A step never throws and tells by its result whether it worked;
// each write and each failure goes into the console's activity record under the step's text, UTF-8.
// Texts and problems may quote strangers.
class Steps {
 public:
  explicit Steps(Console& console) : console_(console) {}
  Steps(const Steps&) = delete;
  Steps& operator=(const Steps&) = delete;

  // A new component, or null where it is missing, which is recorded.
  template <typename Interface>
  std::shared_ptr<Interface> component(std::string_view program_id = Interface::program_id);

  // Calls the component: `call` gets a reference to it and may raise. The component lives until the
  // call returns, but the call may serve the event loop, in which the page may be left and its fields
  // change: what the call works on it must have copied. Where the component is missing, the step fails.
  // ask() is a read, order() a write.
  template <typename Interface, typename Call>
  Outcome ask(const Held<Interface>& held, std::string_view text, Call&& call) const;
  template <typename Interface, typename Call>
  Outcome order(const Held<Interface>& held, std::string_view text, Call&& call) const;
  // The same for a component that was made for this one act and is there.
  template <typename Interface, typename Call>
  Outcome ask(const std::shared_ptr<Interface>& made, std::string_view text, Call&& call) const;

  // Records a step that failed before anything could be tried, and says false.
  bool failed(ActivityRecord::Kind kind, std::string_view text, const std::string& why,
              Console::Step step = Console::Step::read) const;
  // Records what people should find in the record although nothing was written.
  void noted(std::string_view text) const;

  // Sets "HKLM\SOFTWARE\<product key>\<flag>" to 1, which tells the proxy to read its lists again.
  bool raise_flag(std::string_view flag) const;

  // The message box with the critical icon.
  void show_error(std::string_view text, std::string_view title) const;

 protected:
  ~Steps() = default;

  using Kind = ActivityRecord::Kind;
  using Step = Console::Step;

  Console& console_;

 private:
  Outcome on_component(Step step, std::string_view text, bool present, std::string_view what,
                       const std::function<void()>& action) const;
};

// A component that a form keeps while it is shown: the form makes it where its show sequence says so,
// and drops it when it is left. One that is missing is recorded once, when it is made; each step that
// asks it then fails.
class HeldComponent {
 public:
  HeldComponent(const HeldComponent&) = delete;
  HeldComponent& operator=(const HeldComponent&) = delete;
  virtual ~HeldComponent() = default;
  virtual void drop() = 0;

 protected:
  HeldComponent() = default;
};

template <typename Interface>
class Held final : public HeldComponent {
 public:
  // `what` names it in the record: "no DNS component". `owner` drops it, see Page::terminate().
  template <typename Owner>
  Held(Owner& owner, std::string_view what, std::string_view program_id = Interface::program_id)
      : steps_(owner), what_(what), program_id_(program_id) {
    owner.holds(*this);
  }

  // True if it is there.
  bool make() {
    component_ = steps_.template component<Interface>(program_id_);
    return component_ != nullptr;
  }
  void drop() override { component_.reset(); }

  const std::shared_ptr<Interface>& get() const { return component_; }
  std::string_view what() const { return what_; }

 private:
  Steps& steps_;
  std::string_view what_;
  std::string_view program_id_;
  std::shared_ptr<Interface> component_;
};

template <typename Interface>
std::shared_ptr<Interface> Steps::component(std::string_view program_id) {
  std::shared_ptr<Interface> made;
  console_.attempt(Kind::component, "create " + std::string(program_id), Step::read,
                   [&] { made = console_.components().create<Interface>(program_id); });
  return made;
}

template <typename Interface, typename Call>
Outcome Steps::ask(const Held<Interface>& held, std::string_view text, Call&& action) const {
  return on_component(Step::read, text, held.get() != nullptr, held.what(),
                      [&, kept = held.get()] { action(*kept); });
}

template <typename Interface, typename Call>
Outcome Steps::ask(const std::shared_ptr<Interface>& made, std::string_view text, Call&& action) const {
  return on_component(Step::read, text, true, {}, [&, kept = made] { action(*kept); });
}

template <typename Interface, typename Call>
Outcome Steps::order(const Held<Interface>& held, std::string_view text, Call&& action) const {
  return on_component(Step::write, text, held.get() != nullptr, held.what(),
                      [&, kept = held.get()] { action(*kept); });
}

}  // namespace zrl
