#pragma once

#include <memory>
#include <string>

#include "core/contracts/regexp.h"
#include "scripting/vbscript/objects/native.h"

namespace zrl::vbs {

// VBScript.RegExp
class RegexpObject final : public NativeObject {
 public:
  ~RegexpObject() override;
  std::string_view type_name() const override { return "IRegExp2"; }
  std::span<const NativeMember> members() const override;

  Ref<String> pattern;  // none: the empty one
  bool global = false;
  RegExp::Options options;
  // With the pattern set; raises 429 where the host has none, and the errors of patterns.
  RegExp& engine(Machine& machine);

 private:
  std::shared_ptr<RegExp> engine_;
  std::size_t charged_ = 0;  // for what the engine holds
};

// One match of Execute.
class MatchObject final : public NativeObject {
 public:
  MatchObject(Value text, std::size_t first, Value submatches);
  std::string_view type_name() const override { return "IMatch2"; }
  std::span<const NativeMember> members() const override;
  void clear() override;

  Value text;
  std::size_t first_index;
  Value submatches;
};

// The matches of Execute, or the groups of a match: a list that cannot be changed.
class MatchList final : public NativeObject {
 public:
  MatchList(Value values, bool of_groups) : list(std::move(values)), of_groups_(of_groups) {}
  std::string_view type_name() const override { return of_groups_ ? "ISubMatches" : "IMatchCollection2"; }
  std::span<const NativeMember> members() const override;
  Value enumerate(Machine&) override { return list; }
  void clear() override { list.clear(); }

  Value list;

 private:
  bool of_groups_;
};

}  // namespace zrl::vbs
