#include "pages/lists/file_page.h"

#include "core/text/letter_case.h"

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

  bind_busy(addfiles, [this] { add(files_); });
  bind_busy(addextension, [this] { add(extensions_); });
  deleteit.on_click = [this] { remove_text(); };

  files.set_acts({&Text1, &addfiles, &deleteit});
  extension.set_acts({&Text1, &addextension, &deleteit});
  Text1.set_expects(expects::file_name);

  set_layout(column({
      list_head(row({grow(Text1), deleteit}), {freshit, remoteupdate}),
      grow(row({list_frame(Frame1, files, {addfiles, leftim}),
                list_frame(Frame2, extension, {addextension, rightim})})),
      frame(Frame3, grid({checkfiles, checkfilesstream, checkextension})),
  }));
}

void FilePage::fill_lists() {
  load_switches();
  fill_list_boxes();
}

void FilePage::add(const List& list) {
  Text1.set_text(add_to(list, Text1.text()).entry);
  fill_lists();
}

// The text is not trimmed: what stands in the field is what is removed.
void FilePage::remove_text() {
  const std::string text = Text1.text();
  Text1.set_text(lower_unicode(text));
  remove_from(files_, text);
  fill_lists();
}

}  // namespace zrl
