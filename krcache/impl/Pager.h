// Pages resources out and in.
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
/// If a payload is not moved completely, it is lost: the resource is dropped, and the key builds it again when needed.
/// Hooks of resources may do anything meanwhile except destroy the manager.
class Pager {
public:
    Pager(ManagerImpl& manager, urString::IString const& folder, Tuning const& tuning)
        : manager_(manager),
          file_(urOS::Filename::join(folder, "urKRCachePageFile.dat"), tuning.pageExtension, tuning.pageBlock) {}

    /// `size`: the resource's size now.
    void pageOut(Shim& shim, unsigned size);
    /// False if the payload is lost, or the shim was removed meanwhile.
    bool pageIn(Shim& shim);
    /// Releases the shim's chunk.
    void release(Shim& shim);
    /// Describes a fault of the file, which should have `used` chunks in use; null if there is none.
    [[nodiscard]] char const* fault(std::size_t used) const { return file_.fault(used); }

private:
    friend struct CacheProbe;  // for the tests only

    bool endPaging(Shim& shim, PageFileEntry& chunk, FileStream const& stream,
                   std::exception_ptr const& thrownByResource);
    void reportLoss(Shim const& shim, urUtil::Error const& why) noexcept;

    ManagerImpl& manager_;
    PageFile file_;
    bool isLossReported_ = false;  ///< the missing page file was reported
};

}  // namespace urKRCache
