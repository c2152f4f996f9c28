// Messages to developers about changes that cannot be undone.
#pragma once

#include <string>
#include <string_view>

#include "foundation/nxTXN/Object.h"

namespace nxTXN::impl {

/// Such as `Lamp "desk" changed outside a transaction`.
[[nodiscard]] std::string unrecordedText(Object const& object, std::string_view name, char const* where);
/// Reports on the debug channel, once per class, that a change was applied but not recorded.
void reportUnrecorded(Object const& object, std::string_view name, char const* where);

}  // namespace nxTXN::impl
