#include "core/action_writes.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "core/console.h"

namespace zrl {

bool ActionWrites::end() {
  if (--depth_ == waiting_depth_) commit();
  if (depth_ > 0) return false;
  flags_.clear();
  return true;
}

void ActionWrites::join(const ConnectionHandle& conn) {
  if (depth_ <= waiting_depth_ || open_ == conn) return;
  commit();
  conn->begin_transaction();
  open_ = conn;
}

void ActionWrites::worked(std::uint64_t entry) {
  if (open_) entries_.push_back(entry);
}

void ActionWrites::if_dropped(const void* owner, std::function<void()> act) {
  if (open_) acts_.push_back({owner, std::move(act)});
}

void ActionWrites::forget(const void* owner) {
  std::erase_if(acts_, [owner](const Act& act) { return act.owner == owner; });
}

void ActionWrites::flag_raised(std::string path) {
  if (depth_ <= waiting_depth_ || std::ranges::find(flags_, path) != flags_.end()) return;
  flags_.push_back(std::move(path));
}

bool ActionWrites::commit() {
  if (!open_) return true;
  const ConnectionHandle conn = std::exchange(open_, nullptr);
  const auto entries = std::exchange(entries_, {});
  std::string problem;
  try {
    conn->commit();
    acts_.clear();
    if (!entries.empty()) raise_flags_again();
    return true;
  } catch (const std::exception& failure) {
    problem = failure.what();
  }
  for (const std::uint64_t entry : entries)
    console_.activity().turn_into_failure(entry, "undone: " + problem);
  // One by one, since an act may destroy the owner of another.
  while (!acts_.empty()) {
    const Act act = std::move(acts_.back());
    acts_.pop_back();
    act.run();
  }
  return false;
}

void ActionWrites::raise_flags_again() {
  for (const std::string& flag : flags_) console_.settings().raise_again(flag);
}

ActionWrites::Wait::Wait(ActionWrites& writes) : writes_(writes) {
  writes_.commit();
  depth_before_ = std::exchange(writes_.waiting_depth_, writes_.depth_);
  act_ = writes_.console_.acts().suspend();
}

ActionWrites::Wait::~Wait() {
  writes_.console_.acts().resume(std::move(act_));
  writes_.waiting_depth_ = depth_before_;
}

BoxReply CommittingHost::message_box(const MessageBox& box) {
  const ActionWrites::Wait wait(writes_);
  return host_.message_box(box);
}

void CommittingHost::show(Form& dialog) {
  const ActionWrites::Wait wait(writes_);
  host_.show(dialog);
}

void CommittingHost::process_events() {
  const ActionWrites::Wait wait(writes_);
  host_.process_events();
}

void CommittingHost::wait(std::chrono::milliseconds time) {
  const ActionWrites::Wait wait(writes_);
  host_.wait(time);
}

void CommittingHost::start_program(const ProgramStart& program) {
  const ActionWrites::Wait wait(writes_);
  host_.start_program(program);
}

void CommittingHost::offer_file(const std::filesystem::path& path) {
  const ActionWrites::Wait wait(writes_);
  host_.offer_file(path);
}

void CommittingHost::show_progress(const Progress& progress) {
  const ActionWrites::Wait wait(writes_);
  host_.show_progress(progress);
}

}  // namespace zrl
