// What clear functions are given.
#pragma once

#include "foundation/ur/Reference.h"

namespace nxTXN {

/// Marks the last visit to the fields of an object: whatever they hold is to be let go of.
class Clear {
public:
    template <class T>
    void release(ur::Reference<T>& reference) noexcept {
        reference.reset();
    }
};

}  // namespace nxTXN
