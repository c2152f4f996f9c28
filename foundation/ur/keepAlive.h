// Keeps an object alive through code that may release it.
#pragma once

#include "foundation/ur/Reference.h"

namespace ur {

/// A reference to hold while code runs that may drop all others. Null for an object without holders: it is not on the
/// heap, and its first reference would delete it at the end.
template <class Counted>
[[nodiscard]] Reference<Counted> keepAlive(Counted& object) noexcept {
    return Reference<Counted>(object.referenceCount() > 0 ? &object : nullptr);
}

}  // namespace ur
