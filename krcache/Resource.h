// A piece of derived data that the cache keeps.
#pragma once

#include <cstddef>

#include "foundation/ur/Export.h"
#include "foundation/ur/NodeHeap.h"
#include "foundation/ur/ReferenceCount.h"

namespace urOS {
class IOStream;
}

namespace urKRCache {

/// Base class of what keys build. Reports its size, and may write its payload to a file and read it back.
///
/// Shared by reference: a reference keeps a resource alive even after the cache has dropped it, but only a lock
/// keeps its payload in memory. A proxy stands for data that is counted elsewhere and counts nothing itself.
/// The same thread as its manager.
class NX_API Resource : public ur::ReferenceCount, public ur::NodeAllocated {
public:
    Resource() noexcept : Resource(false) {}
    explicit Resource(bool isProxy) noexcept : isProxy_(isProxy) {}
    ~Resource() override = default;

    /// 0 for a proxy, which is not asked.
    [[nodiscard]] unsigned getSizeInBytes() const { return isProxy_ ? 0 : onGetSizeInBytes(); }
    [[nodiscard]] bool isProxy() const noexcept { return isProxy_; }

protected:
    /// The bytes in use. Asked when the resource has come into memory and again when it leaves. It should not change
    /// in between: the cache makes no room for growth, and its count stays wrong by the difference.
    [[nodiscard]] virtual unsigned onGetSizeInBytes() const = 0;
    /// Writes the payload and may then release it: at most as many bytes as the size was when the resource came into
    /// memory, so that one that has grown is dropped. The stream reports no errors: what it does not take, it leaves
    /// out of its count, and the resource is dropped afterwards.
    virtual void onSerialize(urOS::IOStream& /*stream*/) {}
    /// Gets back what `onSerialize` wrote. The stream ends where that ended. A count that falls short of it tells
    /// that the payload is lost: return, the resource will be dropped.
    virtual void onDeserialize(urOS::IOStream& /*stream*/) {}

private:
    friend class Pager;

    bool isProxy_;
};

}  // namespace urKRCache
