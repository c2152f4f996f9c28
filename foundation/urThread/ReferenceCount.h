// The atomic intrusive reference count.
#pragma once

#include <atomic>

#include "foundation/ur/Export.h"

namespace urThread {

/// Base of objects that threads share by `ur::Reference`; deleted on the thread that drops the last reference.
///
/// As `ur::ReferenceCount`, with an atomic count: a new object has the count 0, a copied object starts unshared, and
/// assigning changes neither count. Only the count is thread-safe; the rest of the object needs its own rule.
class NX_API ReferenceCount {
public:
    /// Adds one holder. `ur::Reference` calls it; other code rarely should.
    void ref() const noexcept { count_.fetch_add(1, std::memory_order_relaxed); }
    /// Drops one holder and deletes the object when that was the last.
    void unref() const noexcept;
    /// The number of holders at some moment during the call.
    [[nodiscard]] int referenceCount() const noexcept { return count_.load(std::memory_order_relaxed); }

protected:
    ReferenceCount() noexcept = default;
    ReferenceCount(ReferenceCount const& /*other*/) noexcept {}
    ReferenceCount& operator=(ReferenceCount const& /*other*/) noexcept { return *this; }
    virtual ~ReferenceCount();

private:
    mutable std::atomic<int> count_ = 0;
};

}  // namespace urThread
