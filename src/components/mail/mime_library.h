#pragma once

#include <memory>

#include <gmime/gmime.h>

namespace zrl::mail {

// Initialises the library. To be called before each use; cheap after the first call, and from any thread.
void initialise_mime_library();

struct ReleaseObject {
  void operator()(void* object) const { g_object_unref(object); }
};
// A counted reference to an object of the library.
template <typename Type>
using MimeRef = std::unique_ptr<Type, ReleaseObject>;

struct FreeText {
  void operator()(char* text) const { g_free(text); }
};
using MimeText = std::unique_ptr<char, FreeText>;

}  // namespace zrl::mail
