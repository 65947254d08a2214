#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "core/contracts/host.h"
#include "core/controls.h"
#include "host/web/form_stack.h"
#include "host/web/reporter.h"
#include "host/web/turns.h"

namespace zrl::web {

// What the person at a tab is asked: the message boxes of its console, and what the host asks by itself
// before an act that loses something (loss_question.h). Owns the box that is open; the session is served
// meanwhile, so that forms may come and go before any of these functions returns. On the session's thread.
class Questions {
 public:
  // All must outlive it. `folder` is the console's.
  Questions(const std::filesystem::path& folder, FormStack& forms, Reporter& reporter, Turns& turns)
      : folder_(folder), forms_(forms), reporter_(reporter), turns_(turns) {}

  // Returns when it has been answered, or the session ends, which counts as cancelling.
  BoxReply ask(const MessageBox& box);
  // The browser's answer; ignored unless that box is open.
  void answer(std::uint64_t id, BoxReply reply);
  // Sends the open box, if there is one, to a browser that has connected.
  void tell_again();

  // Whether the person agrees to the act, or there is nothing to ask about. False also if the form is gone by
  // then. A control that cannot be used is not asked about: the act itself refuses it.
  bool permits_click(const ShownForm& shown, Control& control);
  bool permits_choice(const ShownForm& shown, const Control& control);
  bool permits_removal(const ShownForm& shown, const ListBox& list, std::uint64_t entries);
  // About what has been typed and not saved in all these forms, the topmost last.
  bool permits_leaving(std::span<const std::shared_ptr<ShownForm>> left);

  // Whether the session goes on and the form is open in it.
  bool is_still_shown(const ShownForm& shown) const;

 private:
  struct OpenBox {
    std::uint64_t id;
    const MessageBox* box;
    std::optional<BoxReply> reply;
  };

  bool permits_replacing(const ShownForm& shown, const Control& control);
  bool agreed(const ShownForm& shown, const std::optional<MessageBox>& question);

  const std::filesystem::path& folder_;
  FormStack& forms_;
  Reporter& reporter_;
  Turns& turns_;

  std::optional<OpenBox> box_;
  std::uint64_t last_box_ = 0;
};

}  // namespace zrl::web
