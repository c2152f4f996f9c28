// Reports about a cache.
#pragma once

#include "foundation/ur/containers.h"
#include "foundation/urOS/OStream.h"
#include "krcache/Statistics.h"

namespace urKRCache {

class ManagerImpl;
class Shim;

/// Describes the work and contents of a manager for people and programs.
class Reports {
public:
    explicit Reports(ManagerImpl const& manager) noexcept : manager_(manager) {}

    /// Prints bytes by class on the debug channel.
    void logUsageByType() const;
    [[nodiscard]] Statistics statistics() const;
    void printDependencies(urOS::OStream& out) const;
    /// In the DOT language.
    void printDependenciesAsDot(urOS::OStream& out) const;

private:
    [[nodiscard]] ur::vector<Shim const*> inOrder() const;

    ManagerImpl const& manager_;
};

}  // namespace urKRCache
