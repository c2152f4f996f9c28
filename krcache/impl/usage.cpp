// What is in memory, by class, and the counts since the start.
#include <algorithm>

#include "krcache/debugChannel.h"
#include "krcache/impl/ManagerImpl.h"
#include "krcache/impl/sizes.h"

namespace urKRCache {

// Resources are asked for their sizes now; they are held, since that runs code of theirs.
void ManagerImpl::logUsageByType() const {
    urOS::DebugChannel& channel = debugChannel();
    if (!channel.isEnabled()) return;
    channel.print("\nTotal resource memory: %0.02f MB\n", impl::megabytes(used()));
    ur::vector<std::pair<ur::TypeInfo, ur::Reference<Resource>>> resources;
    table_.forEach([&](Shim const& shim) {
        if (shim.isResourceAllocated()) resources.emplace_back(shim.usage_->keyClass, shim.resource_);
    });
    ur::map<ur::TypeInfo, std::uint64_t> bytes;
    for (auto const& [keyClass, resource] : resources) bytes[keyClass] += resource->getSizeInBytes();
    for (auto const& [keyClass, total] : bytes) {
        channel.print("Resource type %s: %0.02f MB\n", keyClass.name(), impl::megabytes(total));
    }
}

Statistics ManagerImpl::statistics() const {
    auto const cleared = [this](Cause cause) { return cleared_[static_cast<std::size_t>(cause)]; };
    Statistics result = statistics_;
    result.clearedForLimit = cleared(Cause::limit);
    result.clearedOnRequest = cleared(Cause::request);
    result.clearedByRemoval = cleared(Cause::removal);
    result.clearedByPageFailure = cleared(Cause::pageFailure);
    result.clearedByBuildFailure = cleared(Cause::buildFailure);
    result.memoryUsed = used_.total;
    std::unordered_map<ur::TypeInfo, ClassUsage> usages = usages_;
    table_.forEach([&](Shim const& shim) {
        if (!shim.isResourceAllocated()) return;
        ClassUsage& usage = usages[shim.usage_->keyClass];
        usage.bytes += shim.size_;
        ++usage.resources;
    });
    for (auto const& [keyClass, usage] : usages) result.classes.push_back(usage);
    std::sort(result.classes.begin(), result.classes.end(),
              [](ClassUsage const& a, ClassUsage const& b) { return a.keyClass < b.keyClass; });
    return result;
}

}  // namespace urKRCache
