// One step of a removal cascade.
#pragma once

#include <cstddef>

#include "krcache/Shim.h"

namespace urKRCache {

/// A removal that is under way. Removals wait on a stack of their own, so that a chain of dependents of any length
/// needs no more of the thread's.
struct Removal {
    enum class Stage { clear, dependents, release, finish, done };

    ur::Reference<Shim> shim;
    Stage stage = Stage::clear;
    ur::vector<ur::Reference<Shim>> children;
    ur::vector<ur::Reference<Shim>> parents;
    std::size_t nextParent = 0;
    std::size_t released = 0;          ///< of the parents, then of the children
    ur::Reference<Resource> resource;  ///< kept until the dependents are gone, whose resources may hold it
};

}  // namespace urKRCache
