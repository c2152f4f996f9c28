// Records the requests and events of a cache.
#pragma once

#include <cstdint>

#include "foundation/ur/Export.h"
#include "foundation/ur/containers.h"
#include "foundation/urOS/IOStream.h"

namespace urKRCache {

/// Keeps events in memory, 12 bytes each, and writes them as text lines of the form "event key size".
///
/// The host owns it and passes it to `Manager::setTraceRecorder`. Files serve to replay the load with another limit or
/// another cache. Hits, builds and page-ins together are the accesses. A value.
class NX_API TraceRecorder {
public:
    enum class Event : std::uint8_t { hit, build, pageOut, pageIn, clear, remove };

    /// One event of one shim.
    struct Entry {
        std::uint32_t key;   ///< the shim's number, counted from 0 in the order of creation
        std::uint32_t size;  ///< of the resource, in bytes
        Event event;

        friend bool operator==(Entry const&, Entry const&) = default;
    };

    void record(Event event, std::uint32_t key, std::uint32_t size);
    [[nodiscard]] ur::vector<Entry> const& entries() const noexcept { return entries_; }
    void clear() noexcept { entries_.clear(); }

    urUtil::Error write(urOS::IOStream& stream) const;
    /// Replaces the entries by those of a file. On failure, including a malformed line, the entries stay unchanged.
    urUtil::Error read(urOS::IOStream& stream);

private:
    ur::vector<Entry> entries_;
};

}  // namespace urKRCache
