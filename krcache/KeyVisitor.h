// What a key shows its sub-keys to.
#pragma once

#include "foundation/ur/Export.h"

namespace urKRCache {

class Shim;

/// Told of the shims that a key's resource is built from, by `KeyData::onVisitSubKeys`.
class NX_API KeyVisitor {
public:
    KeyVisitor() noexcept = default;
    KeyVisitor(KeyVisitor const&) noexcept = default;
    KeyVisitor& operator=(KeyVisitor const&) noexcept = default;
    virtual ~KeyVisitor();

    /// Called once for the shim of each sub-key.
    virtual void visit(Shim* shim) = 0;
};

}  // namespace urKRCache
