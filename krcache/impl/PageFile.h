// The scratch file that holds paged-out resources.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <set>

#include "foundation/urString/IString.h"
#include "krcache/PageFileEntry.h"
#include "krcache/impl/ScratchFile.h"

namespace urKRCache {

/// Allocates and releases chunks of its file; reuses free chunks, best fit first.
///
/// Owned by the manager. Chunks are listed from the end of the file to its start and cover it without gaps; no two free
/// chunks are adjacent. The file grows when bytes are written. If the file could not be opened, every allocation fails
/// and the manager drops resources instead of paging them out.
class PageFile {
public:
    using Block = std::unique_ptr<char[]>;

    /// `extension`: the fewest bytes by which the file grows. `blockSize`: the bytes written and checked at a time.
    PageFile(urString::IString const& path, std::uint64_t extension, std::size_t blockSize);
    PageFile(PageFile const&) = delete;
    PageFile& operator=(PageFile const&) = delete;
    ~PageFile();

    /// A used chunk of exactly that size. Null if the file cannot grow that far.
    PageFileEntry* allocate(std::uint64_t bytes);
    /// Requires: the chunk is in use and no stream is open on it.
    void release(PageFileEntry* entry) noexcept;

    [[nodiscard]] ScratchFile& file() noexcept { return file_; }
    /// Why there is no file; success if there is one.
    [[nodiscard]] urUtil::Error const& openError() const noexcept { return openError_; }

    [[nodiscard]] std::size_t blockSize() const noexcept { return blockSize_; }
    /// A buffer for an open stream; nested streams get further ones.
    [[nodiscard]] Block takeBlock();
    void giveBlock(Block block) noexcept { spareBlock_ = std::move(block); }

    /// The chunk at the end of the file, or null; `after` returns the others.
    [[nodiscard]] PageFileEntry const* first() const noexcept;
    [[nodiscard]] PageFileEntry const* after(PageFileEntry const& entry) const noexcept;
    /// Describes the first invariant that does not hold; null if all hold.
    [[nodiscard]] char const* fault(std::size_t chunksInUse) const;

private:
    friend struct CacheProbe;  // for the tests only

    using Node = urUtil::LinkedListNode<PageFileEntry>;
    struct Smaller {
        using is_transparent = void;
        bool operator()(PageFileEntry const* a, PageFileEntry const* b) const noexcept {
            if (a->size() != b->size()) return a->size() < b->size();
            return a->offset() != b->offset() ? a->offset() < b->offset() : std::less<>()(a, b);  // two empty chunks
        }
        bool operator()(PageFileEntry const* a, std::uint64_t bytes) const noexcept { return a->size() < bytes; }
    };

    bool extend(std::uint64_t bytes);
    void merge(PageFileEntry* lower, PageFileEntry* upper) noexcept;
    void split(PageFileEntry& entry, std::uint64_t bytes);
    [[nodiscard]] PageFileEntry* objectOf(Node* node) const noexcept {
        return node == &entries_ ? nullptr : node->object();
    }

    std::uint64_t extension_;
    std::size_t blockSize_;
    ScratchFile file_;
    urUtil::Error openError_;
    Node entries_;
    std::set<PageFileEntry*, Smaller> freeEntries_;
    std::set<PageFileEntry*, Smaller> usedEntries_;  ///< a set, so that releasing a chunk does not allocate
    Block spareBlock_;
};

}  // namespace urKRCache
