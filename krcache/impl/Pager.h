// Paging of resources.
#pragma once

#include <cstddef>
#include <exception>

#include "foundation/urOS/Filename.h"
#include "foundation/urString/IString.h"
#include "foundation/urUtil/Error.h"
#include "krcache/impl/PageFile.h"
#include "krcache/impl/Tuning.h"

namespace urKRCache {

class FileStream;
class ManagerImpl;
class Shim;

/// Moves the payloads of a manager's resources to its page file and back.
///
/// A payload that is not moved whole is lost: its resource is dropped, and the key builds it anew when it is needed.
/// The hooks of resources may do anything meanwhile but destroy the manager.
class Pager {
public:
    Pager(ManagerImpl& manager, urString::IString const& folder, Tuning const& tuning)
        : manager_(manager),
          file_(urOS::Filename::join(folder, "urKRCachePageFile.dat"), tuning.pageExtension, tuning.pageBlock) {}

    /// `size`: what the resource takes now.
    void pageOut(Shim& shim, unsigned size);
    /// False when the payload is lost, or the shim was removed meanwhile.
    bool pageIn(Shim& shim);
    /// Gives up the chunk of the shim.
    void release(Shim& shim);
    /// What is wrong with the file, which has that many chunks in use; null when nothing is.
    [[nodiscard]] char const* fault(std::size_t used) const { return file_.fault(used); }

private:
    friend struct CacheProbe;  // for the tests alone

    bool endPaging(Shim& shim, PageFileEntry& chunk, FileStream const& stream,
                   std::exception_ptr const& thrownByResource);
    void reportLoss(Shim const& shim, urUtil::Error const& why) noexcept;

    ManagerImpl& manager_;
    PageFile file_;
    bool isLossReported_ = false;  ///< that there is no page file
};

}  // namespace urKRCache
