#pragma once

#include <boost/json/object.hpp>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "core/form.h"
#include "core/input_hint.h"
#include "core/table.h"

namespace zrl::web {

// Remembers what the browser has been sent about a form, and collects what has changed since. The cost of a
// look is proportional to the number of controls, or nothing if the form has not changed; lists are sent as
// length and revision, whatever they hold. The form must outlive it.
class ChangeCollector {
 public:
  explicit ChangeCollector(Form& form) : form_(form) {}

  // The members `caption`, `query`, `layout` and `controls` of a form message; the browser knows the form
  // from then on.
  boost::json::object whole();

  // The members `controls` and, where they are different, `caption` and `query` of a change message; nothing
  // if the browser knows all.
  std::optional<boost::json::object> changes();

  // The browser shows this text in the control already, because it was typed there; the text is sent only if
  // the form changes it.
  void typed(const Control& control, std::string_view text);

  // The browser may show something else than the control holds, so the next changes include the control.
  void tell_again(const Control& control) { untold_.insert(&control); }

 private:
  bool is_news(const Control& control, Property property) const;
  boost::json::object changes_of(const Control& control);
  void add_table_changes(const Table& table, boost::json::object& changed) const;
  InputHint hint_of(const Control& control) const;
  void told_all();

  Form& form_;
  std::string caption_;
  std::string query_;
  Revision told_ = 0;
  std::map<const Control*, std::string> typed_;
  std::set<const Control*> untold_;
  std::map<const Control*, InputHint> hints_;  // as they were sent
};

}  // namespace zrl::web
