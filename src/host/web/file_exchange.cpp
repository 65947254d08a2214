#include "host/web/file_exchange.h"

#include <chrono>
#include <string_view>

#include "core/text/error.h"
#include "core/text/paths.h"
#include "host/web/outgoing.h"

namespace zrl::web {

void FileExchange::offer(const std::filesystem::path& path) {
  const bool awaited = leaving_ && leaving_->path() == path;
  if (const std::optional<Offer> offer = offered_.add(path, awaited ? leaving_ : nullptr)) {
    reporter_.send(file_message(*offer, awaited));
  }
}

void FileExchange::tell_again() {
  reporter_.send(files_message(offered_.unfetched()));
}

// The path that a person has typed is there again afterwards.
void FileExchange::fetch(const ShownForm& shown, Control& control) {
  const FileList::Exchange* exchange =
      control.kind() == ControlKind::file_list ? static_cast<FileList&>(control).exchange() : nullptr;
  if (exchange == nullptr || exchange->exports == nullptr || !control.usable() || leaving_) {
    throw Refused(control.name() + " gives no file now");
  }
  const std::string typed = exchange->path->text();
  leaving_ = UploadFolder(folder_).leave(typed);
  const auto settle = [&] {
    leaving_.reset();
    if (!shown.dialog || shown.form->is_open()) exchange->path->set_text(typed);
  };
  try {
    exchange->exports->user_click();
    exchange->path->user_type(to_product_path(leaving_->path()));
    exchange->run->user_click();
  } catch (const Refused&) {
    settle();
    throw;
  }
  settle();
}

std::optional<FileExchange::Received> FileExchange::receive(PendingUpload& upload) {
  const std::shared_ptr<ShownForm> shown = forms_.find(upload.target.form);
  Control* control = shown ? shown->form->find(upload.target.control) : nullptr;
  if (!shown || upload.deadline < std::chrono::steady_clock::now()) {
    upload.refuse(409, "no_form");
    return {};
  }
  if (control == nullptr || control->kind() != ControlKind::file_list || !control->usable()) {
    upload.refuse(409, "refused");
    return {};
  }
  if (forms_.is_covered(*shown)) {
    upload.refuse(409, "busy");
    return {};
  }
  if (!reporter_.permits_actions()) {
    upload.refuse(503, no_audit);
    return {};
  }
  std::string name;
  try {
    name = upload.file->keep(upload.target.name);
  } catch (const Error& failure) {
    reporter_.note("upload", upload_name(upload.target.name), failure.what());
    upload.refuse(500, "not_saved");
    return {};
  }
  reporter_.note("upload", name + " (" + std::to_string(upload.file->size()) + " bytes)");
  upload.accept(name);
  return Received{shown, static_cast<FileList*>(control), std::move(name)};
}

void FileExchange::choose(const Received& received) {
  FileList& list = *received.list;
  list.set_path(to_product_path(UploadFolder(folder_).path()));
  const std::size_t place = list.items().find(received.name);
  if (place < list.items().size()) list.user_choose(static_cast<std::int64_t>(place));
}

}  // namespace zrl::web
