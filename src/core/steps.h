#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/console.h"
#include "core/contracts/list_tables.h"
#include "core/sentence.h"

namespace zrl {

class CheckBox;
template <typename Interface>
class Held;

// The steps that need no database. A step never throws; its result says whether it worked. Each write and
// each failure goes into the console's activity record under the step's text, UTF-8. Texts and problems may
// quote strangers. The console must outlive the object; all calls belong to its thread.
class Steps {
 public:
  explicit Steps(Console& console) : console_(console) {}
  Steps(const Steps&) = delete;
  Steps& operator=(const Steps&) = delete;

  // A new component, owned by the caller; null if it is missing or cannot be made, which is recorded as a
  // failed read.
  template <typename Interface>
  std::shared_ptr<Interface> component(std::string_view program_id = Interface::program_id);

  // Calls the component: `call` gets a reference to it and may raise, which makes the step fail. The
  // component lives until the call returns. The call may serve the event loop, in which the page may be left
  // and its controls change, so its arguments must be copies, not texts of controls. If the component is
  // missing, the step fails with error 91. What was written is committed before. ask() is recorded as a read
  // (only if it fails), order() as a write. There is no time limit but the component's own.
  template <typename Interface, typename Call>
  Outcome ask(const Held<Interface>& held, std::string_view text, Call&& call) const;
  template <typename Interface, typename Call>
  Outcome order(const Held<Interface>& held, std::string_view text, Call&& call) const;
  // The same for a component that was made for this one act; it must not be null.
  template <typename Interface, typename Call>
  Outcome ask(const std::shared_ptr<Interface>& made, std::string_view text, Call&& call) const;

  // Records a step that failed before anything could be tried, with the reason `why`. Always false, so that a
  // caller can return it.
  bool failed(ActivityRecord::Kind kind, std::string_view text, std::string_view why,
              Console::Step step = Console::Step::read) const;
  // Records a finding, as a write that worked, although nothing was written: reads that work leave no entry.
  void noted(std::string_view text) const;

  // Sets "HKLM\SOFTWARE\<product key>\<flag>" to the double word 1, by which the proxy knows that it has to
  // read a list again. The proxy resets it. If it does so before the action's statements are committed, the
  // flag is set once more after them, see ActionWrites.
  bool raise_flag(std::string_view flag) const;

  // What the operation did, in the words of the page: see Acts::say(). All texts are literals of the
  // catalogue. Where an operation says nothing, hosts tell of its entries in the record.
  void say(const Sentence& sentence, SentenceValues values = {}) const {
    console_.acts().say(sentence, values);
  }
  void say_counted(const Sentence& sentence, std::uint64_t count, SentenceValues values = {}) const {
    console_.acts().say_counted(sentence, count, values);
  }
  // The same for an act on each of several: `done` counts those for which it worked, `count` all of them.
  void say_of_each(const Sentence& sentence, std::uint64_t done, std::uint64_t count,
                   SentenceValues values = {}) const {
    console_.acts().say_counted(sentence, done, values, done > 0 || count == 0);
  }
  // It worked; what may have failed beside it is told, too.
  void say_done(std::string_view text, SentenceValues values = {}) const {
    console_.acts().say(text, SentenceTone::good, values);
  }
  // "Added", or that there was nothing to add; to be called behind the write.
  void say_added(std::string_view entry, const ListTable& list) const;
  // The same if the insertion has other writes beside it; `stored` tells whether it worked.
  void say_added(std::string_view entry, const ListTable& list, bool stored) const;
  // Nothing was done, and why.
  void say_nothing(std::string_view text, SentenceValues values = {}) const {
    console_.acts().say(text, SentenceTone::neutral, values);
  }
  // It failed, for the reason of its last failing step.
  void say_failed(std::string_view text, SentenceValues values = {}) const {
    console_.acts().say(text, SentenceTone::bad, values, Acts::Reason::told);
  }
  // `on` as the person left the box: where the option was not stored, it shows the stored value again.
  void say_switched(const CheckBox& box, bool on) const;
  // What the list is called in sentences (KnownList::words), and a number, in the language of the console.
  std::string list_words(const ListTable& list) const;
  std::string number_text(std::uint64_t number) const;

  // Shows a message box with the critical icon and returns when it has been answered; events run meanwhile.
  // Nothing is recorded.
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

// A component that a form keeps while it is shown: the form makes it at its place in the show sequence, and
// drops it when the form is left. If it is missing, that is recorded when it should be made, and each step
// that asks it then fails.
class HeldComponent {
 public:
  HeldComponent(const HeldComponent&) = delete;
  HeldComponent& operator=(const HeldComponent&) = delete;
  virtual ~HeldComponent() = default;
  // Releases the component, which lives on while a call on it is under way. make() may follow.
  virtual void drop() = 0;

 protected:
  HeldComponent() = default;
};

// Owned by the form as a member, and registered with it on construction: it must live as long as the form.
template <typename Interface>
class Held final : public HeldComponent {
 public:
  // `what` names it in the error of a step, "no DNS component" for "DNS component". `owner` drops it, see
  // Page::terminate(). Neither text is copied: both are literals.
  template <typename Owner>
  Held(Owner& owner, std::string_view what, std::string_view program_id = Interface::program_id)
      : steps_(owner), what_(what), program_id_(program_id) {
    owner.holds(*this);
  }

  // Makes a new one in place of the old; false if that failed. A failure is recorded and leaves none.
  bool make() {
    component_ = steps_.template component<Interface>(program_id_);
    return component_ != nullptr;
  }
  void drop() override { component_.reset(); }

  // Null before make(), after drop(), and if the component is missing. Callers use ask() and order().
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
