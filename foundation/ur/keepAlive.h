// Keeping an object through code that may let go of it.
#pragma once

#include "foundation/ur/Reference.h"

namespace ur {

/// A reference to hold while code runs that may drop all others. Null for an object that nobody holds: it lives outside
/// the heap, and its first reference would delete it in the end.
template <class Counted>
[[nodiscard]] Reference<Counted> keepAlive(Counted& object) noexcept {
    return Reference<Counted>(object.referenceCount() > 0 ? &object : nullptr);
}

}  // namespace ur
