// One chunk of the page file.
#pragma once

#include <cstdint>

#include "foundation/ur/Export.h"
#include "foundation/ur/containers.h"
#include "foundation/urUtil/LinkedListNode.h"

namespace urKRCache {

/// A chunk of the page file, either free or used by one paged-out resource.
///
/// Owned by the page file, whose chunks follow each other without gaps. A used chunk keeps checksums of its blocks in
/// memory, so that bytes changed by others are detected on reading.
class NX_API PageFileEntry : public urUtil::LinkedListNode<PageFileEntry> {
public:
    PageFileEntry() noexcept = default;
    PageFileEntry(PageFileEntry const&) = delete;
    PageFileEntry& operator=(PageFileEntry const&) = delete;

    /// In bytes.
    [[nodiscard]] std::uint64_t size() const noexcept { return size_; }
    /// From the start of the file.
    [[nodiscard]] std::uint64_t offset() const noexcept { return offset_; }
    /// Whether the chunk belongs to a resource.
    [[nodiscard]] bool inUse() const noexcept { return inUse_; }

private:
    friend struct CacheProbe;  // for the tests only
    friend class FileStream;
    friend class PageFile;

    std::uint64_t size_ = 0;
    std::uint64_t offset_ = 0;
    std::uint64_t written_ = 0;         ///< how many bytes the resource has written
    ur::vector<std::uint64_t> checks_;  ///< one for each block written
    bool inUse_ = false;
};

}  // namespace urKRCache
