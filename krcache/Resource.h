// Base class of the data that a cache holds.
#pragma once

#include <cstddef>

#include "foundation/ur/Export.h"
#include "foundation/ur/NodeHeap.h"
#include "foundation/ur/ReferenceCount.h"

namespace urOS {
class IOStream;
}

namespace urKRCache {

/// Base class of the resources that keys build. Reports its size, and may write its payload to a file and read it back.
///
/// Shared by reference: a reference keeps a resource alive even after the cache has dropped it, but only a lock keeps
/// its payload in memory. A proxy refers to data that is counted elsewhere, and counts as 0 bytes itself. Same thread
/// as its manager.
class NX_API Resource : public ur::ReferenceCount, public ur::NodeAllocated {
public:
    Resource() noexcept : Resource(false) {}
    explicit Resource(bool isProxy) noexcept : isProxy_(isProxy) {}
    ~Resource() override = default;

    /// 0 for a proxy; `onGetSizeInBytes` is then not called.
    [[nodiscard]] unsigned getSizeInBytes() const { return isProxy_ ? 0 : onGetSizeInBytes(); }
    [[nodiscard]] bool isProxy() const noexcept { return isProxy_; }

protected:
    /// The bytes in use. Called when the resource comes into memory and again when it leaves. It should not change in
    /// between: the cache makes no room for growth, and its count stays wrong by the difference.
    [[nodiscard]] virtual unsigned onGetSizeInBytes() const = 0;
    /// Writes the payload and may then release it. It may write at most the size that the resource had when it came
    /// into memory; one that has grown is dropped. The stream reports no errors: its counts leave out bytes that it
    /// could not write, and the resource is then dropped.
    virtual void onSerialize(urOS::IOStream& /*stream*/) {}
    /// Reads back what `onSerialize` wrote. The stream ends at the end of that. If it returns fewer bytes than
    /// expected, the payload is lost: return, and the resource will be dropped.
    virtual void onDeserialize(urOS::IOStream& /*stream*/) {}

private:
    friend class Pager;

    bool isProxy_;
};

}  // namespace urKRCache
