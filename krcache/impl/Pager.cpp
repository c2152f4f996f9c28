// Writes payloads to the page file and reads them back.
#include "krcache/impl/Pager.h"

#include <string>
#include <utility>

#include "foundation/urOS/FirstError.h"
#include "krcache/debugChannel.h"
#include "krcache/impl/FileStream.h"
#include "krcache/impl/ManagerImpl.h"
#include "krcache/impl/sizes.h"

namespace urKRCache {

/// `size`: the resource's size now. Its chunk has the size that the resource had on entry.
void Pager::pageOut(Shim& shim, unsigned size) {
    PageFileEntry* const chunk = file_.allocate(shim.size_);
    if (!chunk) {
        reportLoss(shim, file_.openError().isError() ? file_.openError() : urUtil::Error(0, "the file is full"));
        return manager_.clearAllocated(shim, size, Leaving::pageFailure);
    }
    manager_.takeFromUsed(shim, size);
    shim.pageEntry_ = chunk;

    FileStream stream(file_, *chunk, FileStream::Direction::write);
    ur::Reference<Resource> const resource = shim.resource_;
    urOS::FirstError thrown;
    thrown.guard([&] {
        Scoped const paging(shim.paging_, true);
        resource->onSerialize(stream);
    });
    stream.finish();
    if (!endPaging(shim, *chunk, stream, thrown.get())) return;
    ++manager_.statistics_.pagesOut;
    manager_.statistics_.pagesOutBytes += stream.transferred();
    manager_.record(TraceRecorder::Event::pageOut, shim);
    manager_.noteLeaving(shim, Leaving::pageOut);
}

// False if the payload is lost, or the shim was removed meanwhile.
bool Pager::pageIn(Shim& shim) {
    manager_.makeSpace(shim.size_, shim.residential_);
    PageFileEntry* const chunk = shim.pageEntry_;
    if (!chunk) return false;

    ur::Reference<KeyData> const key = shim.key_;
    FileStream stream(file_, *chunk, FileStream::Direction::read);
    ur::Reference<Resource> const resource = shim.resource_;
    unsigned size = 0;
    urOS::FirstError thrown;
    thrown.guard([&] {
        Scoped const paging(shim.paging_, true);
        resource->onDeserialize(stream);
        if (!stream.failed()) size = resource->getSizeInBytes();
    });
    if (!endPaging(shim, *chunk, stream, thrown.get())) return false;
    release(shim);
    manager_.link(shim);
    ++manager_.statistics_.pagesIn;
    manager_.statistics_.pagesInBytes += stream.transferred();
    manager_.account(shim, *key, size, TraceRecorder::Event::pageIn);
    return true;
}

// Returns whether the whole payload was moved. If not, it is lost, and the key builds the resource again when needed.
bool Pager::endPaging(Shim& shim, PageFileEntry& chunk, FileStream const& stream,
                      std::exception_ptr const& thrownByResource) {
    std::exception_ptr const& thrown = thrownByResource ? thrownByResource : stream.thrown();
    bool const wasRemoved = shim.pageEntry_ != &chunk;
    bool const isLost = !wasRemoved && (thrown || stream.failed());
    if (wasRemoved) file_.release(&chunk);
    if (isLost) {
        release(shim);
        if (!thrown) reportLoss(shim, stream.error());
        manager_.dropResource(shim, Leaving::pageFailure);
    }
    if (thrown) std::rethrow_exception(thrown);
    return !wasRemoved && !isLost;
}

/// Releases the chunk. If a stream is open on it, the code that opened the stream releases the chunk later.
void Pager::release(Shim& shim) {
    PageFileEntry* const chunk = std::exchange(shim.pageEntry_, nullptr);
    if (!shim.paging_) file_.release(chunk);
}

// A file that could not be opened is reported only once. If memory runs out, the report is left out, because the loss
// must still be handled.
void Pager::reportLoss(Shim const& shim, urUtil::Error const& why) noexcept {
    bool const isOpen = file_.openError().ok();
    if (!isOpen && std::exchange(isLossReported_, true)) return;
    urOS::FirstError ignored;
    ignored.guard([&] {
        debugChannel().print("Dropped a %.02fMB resource instead of paging it: %s\n", impl::megabytes(shim.size_),
                             std::string(why.message()).c_str());
    });
}

}  // namespace urKRCache
