// Errors of files.
#pragma once

#include "foundation/urString/IString.h"
#include "foundation/urUtil/Error.h"

namespace nxSupport::impl {

/// "path: what".
[[nodiscard]] inline urUtil::Error errorAbout(urString::IString const& path, std::string_view what) {
    return {0, path.asMultibyte().append(": ").append(what)};
}

}  // namespace nxSupport::impl
