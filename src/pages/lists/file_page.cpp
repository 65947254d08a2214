#include "pages/lists/file_page.h"

#include "core/text/letter_case.h"
#include "core/text/text.h"

namespace zrl {

FilePage::FilePage(Console& console) : ListPage(console, "filescanner", "Attachments") {
  bind_lists(Text1, Place::forgotten, {files_, extensions_});
  bind_switches({
      {checkfiles, "checkfiles"},
      {checkfilesstream, "checkfilesstream"},
      {checkextension, "checkextension"},
  });
  bind_transfer(leftim, files_);
  bind_transfer(rightim, extensions_);
  bind_update(remoteupdate, attachment_list_files());
  freshit.on_click = [this] { fill_lists(); };

  bind_busy(addfiles, &FilePage::add_file);
  bind_busy(addextension, &FilePage::add_extension);
  deleteit.on_click = [this] { remove_text(); };

  files.set_acts({&Text1, &addfiles, &deleteit});
  extension.set_acts({&Text1, &addextension, &deleteit});

  set_layout(column({
      row({grow(Text1), deleteit}),
      grow(row({list_frame(Frame1, files, {addfiles, leftim}),
                list_frame(Frame2, extension, {addextension, rightim})})),
      row({freshit, remoteupdate}),
      frame(Frame3, grid({checkfiles, checkfilesstream, checkextension})),
  }));
}

void FilePage::fill_lists() {
  load_switches();
  fill_list_boxes();
}

void FilePage::add_file() {
  Text1.set_text(lower_unicode(trim(Text1.text())));
  if (!Text1.text().empty()) {
    execute(delete_from(list::file_names, Text1.text()));
    execute(insert_into(list::file_names, Text1.text()));
  }
  fill_lists();
}

// Extensions are listed without their dot; a text with one is only taken off the list.
void FilePage::add_extension() {
  Text1.set_text(lower_unicode(trim(Text1.text())));
  const std::string& text = Text1.text();
  if (!text.empty()) {
    execute(delete_from(list::extensions, text));
    if (text.find('.') == text.npos) execute(insert_into(list::extensions, text));
  }
  fill_lists();
}

// The text is not trimmed: what stands in the field is what is removed.
void FilePage::remove_text() {
  const std::string text = Text1.text();
  Text1.set_text(lower_unicode(text));
  remove_lower(list::file_names, text);
  remove_lower(list::extensions, text);
  fill_lists();
}

}  // namespace zrl
