// The scratch file into which resources are paged out.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <set>

#include "foundation/urString/IString.h"
#include "krcache/PageFileEntry.h"
#include "krcache/impl/ScratchFile.h"

namespace urKRCache {

/// Hands out chunks of its file and takes them back; free chunks are used again, best fit first.
///
/// Owned by the manager. Chunks are listed from the end of the file to its start and cover it without gaps; no two
/// free ones are neighbours. Bytes appear in the file when they are written. A file that could not be opened is
/// full: its manager drops what it would have paged out.
class PageFile {
public:
    using Block = std::unique_ptr<char[]>;

    /// `extension`: by how many bytes the file grows at least. `blockSize`: how many are written and checked at a time.
    PageFile(urString::IString const& path, std::uint64_t extension, std::size_t blockSize);
    PageFile(PageFile const&) = delete;
    PageFile& operator=(PageFile const&) = delete;
    ~PageFile();

    /// A chunk of exactly that size, in use; null when the file cannot grow that far.
    PageFileEntry* allocate(std::uint64_t bytes);
    /// Requires: a chunk in use, with no stream open on it.
    void release(PageFileEntry* entry) noexcept;

    [[nodiscard]] ScratchFile& file() noexcept { return file_; }
    /// Why there is no file; success when there is one.
    [[nodiscard]] urUtil::Error const& openError() const noexcept { return openError_; }

    [[nodiscard]] std::size_t blockSize() const noexcept { return blockSize_; }
    /// A buffer for the stream that is open; streams inside streams get further ones.
    [[nodiscard]] Block takeBlock();
    void giveBlock(Block block) noexcept { spareBlock_ = std::move(block); }

    /// The first chunk (the one that ends the file), or null; `after` leads to the others.
    [[nodiscard]] PageFileEntry const* first() const noexcept;
    [[nodiscard]] PageFileEntry const* after(PageFileEntry const& entry) const noexcept;
    /// The first rule of the chunks that does not hold; null when all do.
    [[nodiscard]] char const* fault(std::size_t chunksInUse) const;

private:
    friend struct CacheProbe;  // for the tests alone

    using Node = urUtil::LinkedListNode<PageFileEntry>;
    struct Smaller {
        using is_transparent = void;
        bool operator()(PageFileEntry const* a, PageFileEntry const* b) const noexcept {
            if (a->size() != b->size()) return a->size() < b->size();
            return a->offset() != b->offset() ? a->offset() < b->offset() : std::less<>()(a, b);  // two empty ones
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
    std::set<PageFileEntry*, Smaller> usedEntries_;  ///< so that giving one back takes no memory
    Block spareBlock_;
};

}  // namespace urKRCache
