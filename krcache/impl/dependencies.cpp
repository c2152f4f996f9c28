// The shims and what they are built from, for people to look at.
#include <algorithm>

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

/// All shims in the order of their creation.
ur::vector<Shim const*> ManagerImpl::inOrder() const {
    ur::vector<Shim const*> shims;
    shims.reserve(table_.size());
    table_.forEach([&](Shim const& shim) { shims.push_back(&shim); });
    std::sort(shims.begin(), shims.end(), [](Shim const* a, Shim const* b) { return a->serial_ < b->serial_; });
    return shims;
}

void ManagerImpl::printDependencies(urOS::OStream& out) const {
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

void ManagerImpl::printDependenciesAsDot(urOS::OStream& out) const {
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
