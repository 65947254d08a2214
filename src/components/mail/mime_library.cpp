#include "components/mail/mime_library.h"

namespace zrl {

void initialise_mime_library() {
  static const bool ready = [] {
    g_mime_init();
    return true;
  }();
  static_cast<void>(ready);
}

ParserOptions make_parser_options() {
  initialise_mime_library();
  ParserOptions options(g_mime_parser_options_new());
  const char* charsets[] = {"utf-8", "windows-1252", nullptr};
  g_mime_parser_options_set_fallback_charsets(options.get(), charsets);
  return options;
}

}  // namespace zrl
