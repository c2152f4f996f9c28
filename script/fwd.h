// Declares what the other headers of this module define. Made by scripts/module_headers.
#pragma once

namespace nxSupport {

struct ScriptValue;

}  // namespace nxSupport
