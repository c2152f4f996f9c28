// Visits the sub-keys of a key.
#pragma once

#include "foundation/ur/Export.h"

namespace urKRCache {

class Shim;

/// `KeyData::onVisitSubKeys` calls it for each shim that the key's resource is built from.
class NX_API KeyVisitor {
public:
    KeyVisitor() noexcept = default;
    KeyVisitor(KeyVisitor const&) noexcept = default;
    KeyVisitor& operator=(KeyVisitor const&) noexcept = default;
    virtual ~KeyVisitor() = default;

    /// Called once for the shim of each sub-key.
    virtual void visit(Shim* shim) = 0;
};

}  // namespace urKRCache
