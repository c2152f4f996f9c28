// The argument of clear functions.
#pragma once

#include "foundation/ur/Reference.h"

namespace nxTXN {

/// Marks the last visit to the fields of an object: the fields must release what they hold.
class Clear {
public:
    template <class T>
    void release(ur::Reference<T>& reference) noexcept {
        reference.reset();
    }
};

}  // namespace nxTXN
