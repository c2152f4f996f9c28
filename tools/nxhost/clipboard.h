// Copies objects for scripts.
#pragma once

#include <string_view>

#include "support/documents/Object.h"

namespace nxhost {

class Document;
using Objects = ur::vector<ur::Reference<nxSupport::Object>>;

/// As native functions take them; without null.
[[nodiscard]] ur::vector<nxSupport::Object*> pointersTo(Objects const& objects);

// What is made is charged as other objects are, before it is made. Failures are raised.

/// JSON of the objects and all below them, as `nxSupport::copy` says.
[[nodiscard]] urString::CString copy(Document& document, Objects const& objects);
/// Inserts copied objects as children of `parent` from `place` on.
Objects paste(Document& document, nxSupport::Object& parent, std::size_t place, std::string_view text);
/// Inserts a copy of each object directly after it.
Objects duplicate(Document& document, Objects const& objects);

}  // namespace nxhost
