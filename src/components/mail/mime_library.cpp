#include "components/mail/mime_library.h"

namespace zrl::mail {

void initialise_mime_library() {
  static const bool ready = [] {
    g_mime_init();
    return true;
  }();
  static_cast<void>(ready);
}

}  // namespace zrl::mail
