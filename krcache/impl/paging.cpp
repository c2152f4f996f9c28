// Writing payloads to the page file and getting them back.
#include "krcache/debugChannel.h"
#include "krcache/impl/FileStream.h"
#include "krcache/impl/ManagerImpl.h"
#include "krcache/impl/sizes.h"

namespace urKRCache {
namespace {

/// What `work` throws, or null.
template <class Work>
std::exception_ptr thrownBy(Work&& work) noexcept {
    try {
        work();
    } catch (...) {
        return std::current_exception();
    }
    return nullptr;
}

}  // namespace

/// `size`: what the resource takes now. Its chunk has the size that it had when it came.
void ManagerImpl::pageOut(Shim& shim, unsigned size) {
    PageFileEntry* const chunk = pageFile_.allocate(shim.size_);
    if (!chunk) {
        reportLoss(shim,
                   pageFile_.openError().isError() ? pageFile_.openError() : urUtil::Error(0, "the file is full"));
        return clearAllocated(shim, size, Cause::pageFailure);
    }
    takeFromUsed(shim, size);
    shim.pageEntry_ = chunk;

    FileStream stream(pageFile_, *chunk, FileStream::Direction::write);
    ur::Reference<Resource> const resource = shim.resource_;
    std::exception_ptr const thrown = thrownBy([&] {
        Scoped const paging(shim.paging_, true);
        resource->onSerialize(stream);
    });
    stream.finish();
    if (!endPaging(shim, *chunk, stream, thrown)) return;
    ++statistics_.pagesOut;
    statistics_.pagesOutBytes += stream.transferred();
    record(TraceRecorder::Event::pageOut, shim);
    noteLeaving(shim, Cause::pageOut);
}

// False when the payload is lost, or the shim was removed meanwhile.
bool ManagerImpl::pageIn(Shim& shim) {
    makeSpace(shim.size_, shim.residential_);
    PageFileEntry* const chunk = shim.pageEntry_;
    if (!chunk) return false;

    ur::Reference<KeyData> const key = shim.key_;
    FileStream stream(pageFile_, *chunk, FileStream::Direction::read);
    ur::Reference<Resource> const resource = shim.resource_;
    unsigned size = 0;
    std::exception_ptr const thrown = thrownBy([&] {
        Scoped const paging(shim.paging_, true);
        resource->onDeserialize(stream);
        if (!stream.failed()) size = resource->getSizeInBytes();
    });
    if (!endPaging(shim, *chunk, stream, thrown)) return false;
    cleanUpPaging(shim);
    link(shim);
    ++statistics_.pagesIn;
    statistics_.pagesInBytes += stream.transferred();
    account(shim, *key, size, TraceRecorder::Event::pageIn);
    return true;
}

// Whether the payload has been moved whole. One that has not is lost: the key builds the resource anew when it is
// needed.
bool ManagerImpl::endPaging(Shim& shim, PageFileEntry& chunk, FileStream const& stream,
                            std::exception_ptr const& thrownByResource) {
    std::exception_ptr const& thrown = thrownByResource ? thrownByResource : stream.thrown();
    bool const wasRemoved = shim.pageEntry_ != &chunk;
    bool const isLost = !wasRemoved && (thrown || stream.failed());
    if (wasRemoved) pageFile_.release(&chunk);
    if (isLost) {
        cleanUpPaging(shim);
        if (!thrown) reportLoss(shim, stream.error());
        dropResource(shim, Cause::pageFailure);
    }
    if (thrown) std::rethrow_exception(thrown);
    return !wasRemoved && !isLost;
}

/// Gives up the chunk; while a stream is open on it, whoever opened the stream releases it.
void ManagerImpl::cleanUpPaging(Shim& shim) {
    PageFileEntry* const chunk = std::exchange(shim.pageEntry_, nullptr);
    if (!shim.paging_) pageFile_.release(chunk);
}

// A file that could not be opened is told of once: it would be told of at every eviction. What there is no memory to
// tell is not told, since the loss is still to be dealt with.
void ManagerImpl::reportLoss(Shim const& shim, urUtil::Error const& why) noexcept {
    bool const isOpen = pageFile_.openError().ok();
    if (!isOpen && std::exchange(pageFileTold_, true)) return;
    static_cast<void>(thrownBy([&] {
        debugChannel().print("Dropped a %.02fMB resource instead of paging it: %s\n", impl::megabytes(shim.size_),
                             std::string(why.message()).c_str());
    }));
}

}  // namespace urKRCache
