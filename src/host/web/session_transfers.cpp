#include <algorithm>

#include "core/text/error.h"
#include "core/text/paths.h"
#include "host/web/session_console.h"
#include "host/web/uploads.h"

// Programs on terminals, and files that come and go.
namespace zrl::web {

void SessionConsole::start_program(const ProgramStart& program) {
  terminals_.start(program);
}

void SessionConsole::use_terminal(const BrowserMessage& message) {
  using Type = BrowserMessage::Type;
  switch (message.type) {
    case Type::input:
      if (!terminals_.type(message.id, message.text)) refuse({}, "busy", "the program does not read");
      break;
    case Type::resize:
      terminals_.resize(message.id, message.columns, message.lines);
      break;
    case Type::taken:
      terminals_.taken(message.id, message.position);
      break;
    default:
      terminals_.close(message.id);
      break;
  }
}

void SessionConsole::offer_file(const std::filesystem::path& path) {
  // What is no file cannot be fetched; that is no reason for the page's action to fail.
  if (const std::optional<Offer> offer = offered_.add(path)) send(file_message(*offer));
}

void SessionConsole::handle_upload(PendingUpload& upload) {
  const std::shared_ptr<ShownForm> shown = find_form(upload.target.form);
  Control* control = shown ? shown->form->find(upload.target.control) : nullptr;
  if (!shown || upload.deadline < Clock::now()) {
    upload.refuse(409, "no_form");
  } else if (control == nullptr || control->kind() != ControlKind::file_list || !control->usable()) {
    upload.refuse(409, "refused");
  } else if (is_covered(*shown)) {
    upload.refuse(409, "busy");
  } else {
    take_upload(upload, static_cast<FileList&>(*control));
  }
}

// As if the user had found the file in the upload folder, and clicked it.
void SessionConsole::take_upload(PendingUpload& upload, FileList& list) {
  std::string name;
  try {
    name = upload.file->keep(upload.target.name);
  } catch (const Error& failure) {
    audit_log_.note(page_name(), "upload", upload_name(upload.target.name), failure.what());
    upload.refuse(500, "not_saved");
    return;
  }
  audit_log_.note(page_name(), "upload", name + " (" + std::to_string(upload.file->size()) + " bytes)");
  upload.accept(name);
  try {
    run_action([&] {
      list.set_path(to_product_path(UploadFolder(settings_.folder).path()));
      const StringList& items = list.items();
      for (std::size_t i = 0; i < items.size(); ++i) {
        if (items[i] != name) continue;
        list.user_choose(static_cast<std::int64_t>(i));
        break;
      }
    });
  } catch (const Refused&) {
    // Nothing but the folder being removed meanwhile leads here; the list shows what is there.
    flush();
  }
}

}  // namespace zrl::web
