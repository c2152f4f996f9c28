// Reports usage by class, counts, and dependencies as text and as a graph.
#include "krcache/impl/Reports.h"

#include <algorithm>

#include "krcache/debugChannel.h"
#include "krcache/impl/ManagerImpl.h"
#include "krcache/impl/sizes.h"

namespace urKRCache {
namespace {

char const* stateOf(Shim const& shim) {
    if (shim.isResourceSerialized()) return "paged out";
    if (!shim.isResourceAllocated()) return "absent";
    return shim.isResourceLocked() ? "locked" : "in memory";
}

}  // namespace

// Holds the resources, because asking them for their sizes runs their code.
void Reports::logUsageByType() const {
    urOS::DebugChannel& channel = debugChannel();
    if (!channel.isEnabled()) return;
    channel.print("\nTotal resource memory: %0.02f MB\n", impl::megabytes(manager_.budget_.used()));
    ur::vector<std::pair<ur::TypeInfo, ur::Reference<Resource>>> resources;
    manager_.table_.forEach([&](Shim const& shim) {
        if (shim.isResourceAllocated()) resources.emplace_back(shim.usage_->keyClass, shim.resource_);
    });
    ur::map<ur::TypeInfo, std::uint64_t> bytes;
    for (auto const& [keyClass, resource] : resources) bytes[keyClass] += resource->getSizeInBytes();
    for (auto const& [keyClass, total] : bytes) {
        channel.print("Resource type %s: %0.02f MB\n", keyClass.name(), impl::megabytes(total));
    }
}

Statistics Reports::statistics() const {
    auto const cleared = [this](Leaving cause) { return manager_.cleared_[static_cast<std::size_t>(cause)]; };
    Statistics result = manager_.statistics_;
    result.clearedForLimit = cleared(Leaving::limit);
    result.clearedOnRequest = cleared(Leaving::request);
    result.clearedByRemoval = cleared(Leaving::removal);
    result.clearedByPageFailure = cleared(Leaving::pageFailure);
    result.clearedByBuildFailure = cleared(Leaving::buildFailure);
    result.memoryUsed = manager_.budget_.usedByResources();
    result.peakMemoryUsed = manager_.budget_.peak();
    std::unordered_map<ur::TypeInfo, ClassUsage> usages = manager_.usages_;
    manager_.table_.forEach([&](Shim const& shim) {
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

/// All shims in order of creation.
ur::vector<Shim const*> Reports::inOrder() const {
    ur::vector<Shim const*> shims;
    shims.reserve(manager_.table_.size());
    manager_.table_.forEach([&](Shim const& shim) { shims.push_back(&shim); });
    std::sort(shims.begin(), shims.end(), [](Shim const* a, Shim const* b) { return a->serial_ < b->serial_; });
    return shims;
}

void Reports::printDependencies(urOS::OStream& out) const {
    for (Shim const* const shim : inOrder()) {
        out.print("#%u %s: %s, %u bytes", shim->serial_, shim->usage_->keyClass.readableName().c_str(), stateOf(*shim),
                  shim->size_);
        char const* separator = ", from";
        for (Shim::Link const& link : shim->children()) {
            if (link.shim) out.print("%s #%u", std::exchange(separator, ""), link.shim->serial_);
        }
        out.print("\n");
    }
}

void Reports::printDependenciesAsDot(urOS::OStream& out) const {
    out.write("digraph resources {\n  node [shape=box];\n");
    for (Shim const* const shim : inOrder()) {
        out.print("  n%u [label=\"#%u %s\\n%s, %.02f MB\"];\n", shim->serial_, shim->serial_,
                  shim->usage_->keyClass.readableName().c_str(), stateOf(*shim), impl::megabytes(shim->size_));
        for (Shim::Link const& link : shim->children()) {
            if (link.shim) out.print("  n%u -> n%u;\n", link.shim->serial_, shim->serial_);
        }
    }
    out.print("}\n");
}

}  // namespace urKRCache
