#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "core/controls.h"
#include "host/web/form_stack.h"
#include "host/web/offered_files.h"
#include "host/web/reporter.h"
#include "host/web/uploads.h"

namespace zrl::web {

// Files that go between the user's machine and the pages of a tab. Shares the ownership of the file that a
// form is having written for the user; what has been offered belongs to OfferedFiles. On the session's
// thread.
class FileExchange {
 public:
  // A file that has come, and the list of files that it is for; both are there as long as this is.
  struct Received {
    std::shared_ptr<ShownForm> shown;
    FileList* list;
    std::string name;
  };

  // All must outlive it. `folder` is the console's.
  FileExchange(const std::filesystem::path& folder, OfferedFiles& offered, FormStack& forms,
               Reporter& reporter)
      : folder_(folder), offered_(offered), forms_(forms), reporter_(reporter) {}

  // Offers a file that a page has written. What is no file is ignored: it cannot be fetched, which is no
  // reason for the page's action to fail.
  void offer(const std::filesystem::path& path);
  // Tells a browser that has connected what it has not fetched yet.
  void tell_again();

  // Has the form write its file to a place of its own, as the user would, and offers it. To be called within
  // an action. Raises Refused if the control gives no file now.
  void fetch(const ShownForm& shown, Control& control);

  // Keeps a file that was sent over HTTP, and answers its request; nothing if it was refused.
  std::optional<Received> receive(PendingUpload& upload);
  // Chooses it, as if the user had found it in the upload folder. To be called within an action. Raises
  // Refused if the form does not permit that any more.
  void choose(const Received& received);

 private:
  const std::filesystem::path& folder_;
  OfferedFiles& offered_;
  FormStack& forms_;
  Reporter& reporter_;

  std::shared_ptr<const LeavingFile> leaving_;  // what fetch() is having written
};

}  // namespace zrl::web
