// The non-atomic intrusive reference count.
#pragma once

#include "foundation/ur/Export.h"

namespace ur {

/// Base of objects that are shared by `ur::Reference` and delete themselves with the last reference.
///
/// A new object has the count 0 and belongs to its first reference. A copied object starts unshared, and
/// assigning leaves both counts alone. The count is not atomic: an object that two threads may hold at the
/// same time derives from `urThread::ReferenceCount` instead.
class NX_API ReferenceCount {
public:
    /// Adds one holder. `ur::Reference` calls it; other code rarely should.
    void ref() const noexcept { ++count_; }
    /// Drops one holder and deletes the object when that was the last.
    void unref() const noexcept {
        if (--count_ == 0) delete this;
    }
    /// The number of holders now.
    [[nodiscard]] int referenceCount() const noexcept { return count_; }

protected:
    ReferenceCount() noexcept = default;
    ReferenceCount(ReferenceCount const& /*other*/) noexcept {}
    ReferenceCount& operator=(ReferenceCount const& /*other*/) noexcept { return *this; }
    virtual ~ReferenceCount() = default;

    /// Drops one holder and never deletes: for constructors that held their object while others could release it.
    void unrefInConstructor() const noexcept { --count_; }

private:
    mutable int count_ = 0;
};

}  // namespace ur
