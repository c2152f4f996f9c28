// Splits the page file into chunks and joins free ones.
#include "krcache/impl/PageFile.h"

#include <algorithm>
#include <utility>

namespace urKRCache {

PageFile::PageFile(urString::IString const& path, std::uint64_t extension, std::size_t blockSize)
    : extension_(extension), blockSize_(blockSize), openError_(file_.open(std::string(path.asMultibyte().view()))) {
    entries_.makeSentinel();
}

PageFile::~PageFile() {
    for (Node* node = entries_.next(); node != &entries_;) delete std::exchange(node, node->next())->object();
}

PageFileEntry* PageFile::allocate(std::uint64_t bytes) {
    auto best = freeEntries_.lower_bound(bytes);
    if (best == freeEntries_.end()) {
        if (!file_.isOpen() || !extend(bytes)) return nullptr;
        best = freeEntries_.find(objectOf(entries_.next()));
    }
    PageFileEntry& entry = **best;
    if (entry.size_ > bytes) split(entry, bytes);
    auto node = freeEntries_.extract(best);
    entry.size_ = bytes;
    entry.inUse_ = true;
    usedEntries_.insert(std::move(node));
    return &entry;
}

// The bytes of the entry after the first `bytes` become a free chunk, which precedes the entry in the list.
void PageFile::split(PageFileEntry& entry, std::uint64_t bytes) {
    auto rest = std::make_unique<PageFileEntry>();
    rest->offset_ = entry.offset_ + bytes;
    rest->size_ = entry.size_ - bytes;
    freeEntries_.insert(rest.get());
    rest.release()->insertBefore(entry);
}

// False if the file would exceed its size limit.
bool PageFile::extend(std::uint64_t bytes) {
    PageFileEntry* const last = objectOf(entries_.next());
    std::uint64_t const end = last ? last->offset_ + last->size_ : 0;
    std::uint64_t const limit = ScratchFile::sizeLimit();
    std::uint64_t const room = limit > end ? limit - end : 0;
    std::uint64_t const size = std::min(std::max(bytes, extension_), room);
    if (size < bytes || size == 0) return false;

    auto added = std::make_unique<PageFileEntry>();
    added->offset_ = end;
    added->size_ = size;
    freeEntries_.insert(added.get());
    PageFileEntry* const upper = added.release();
    upper->insertAfter(entries_);
    if (last && !last->inUse_) merge(last, upper);
    return true;
}

void PageFile::release(PageFileEntry* entry) noexcept {
    freeEntries_.insert(usedEntries_.extract(entry));
    entry->inUse_ = false;
    entry->written_ = 0;
    entry->checks_ = {};
    PageFileEntry* const below = objectOf(entry->next());
    if (below && !below->inUse_) {
        merge(below, entry);
        entry = below;
    }
    PageFileEntry* const above = objectOf(entry->previous());
    if (above && !above->inUse_) merge(entry, above);
}

void PageFile::merge(PageFileEntry* lower, PageFileEntry* upper) noexcept {
    freeEntries_.erase(upper);
    auto node = freeEntries_.extract(lower);
    lower->size_ += upper->size_;
    freeEntries_.insert(std::move(node));
    upper->unlink();
    delete upper;
}

PageFile::Block PageFile::takeBlock() {
    return spareBlock_ ? std::move(spareBlock_) : std::make_unique_for_overwrite<char[]>(blockSize_);
}

PageFileEntry const* PageFile::first() const noexcept { return objectOf(entries_.next()); }

PageFileEntry const* PageFile::after(PageFileEntry const& entry) const noexcept { return objectOf(entry.next()); }

char const* PageFile::fault(std::size_t chunksInUse) const {
    std::size_t used = 0;
    std::size_t free = 0;
    PageFileEntry const* above = nullptr;
    for (PageFileEntry const* entry = first(); entry; above = entry, entry = after(*entry)) {
        if (above && entry->offset() + entry->size() != above->offset()) return "page file: chunks leave a gap";
        if (above && !entry->inUse() && !above->inUse()) return "page file: free neighbours are not merged";
        if (entry->written_ > entry->size()) return "page file: more is written to a chunk than it holds";
        if (!entry->inUse() && !freeEntries_.contains(const_cast<PageFileEntry*>(entry))) {
            return "page file: a free chunk is not in the free set";
        }
        ++(entry->inUse() ? used : free);
    }
    if (above && above->offset() != 0) return "page file: the first chunk does not start the file";
    if (free != freeEntries_.size()) return "page file: the free set has chunks that are not free";
    if (used != usedEntries_.size()) return "page file: the set of chunks in use has others";
    return used == chunksInUse ? nullptr : "page file: chunks in use and paged-out resources differ in number";
}

}  // namespace urKRCache
