// The services of a host, found by class.
#pragma once

#include <utility>

#include "foundation/ur/Export.h"
#include "foundation/ur/TypeInfo.h"
#include "foundation/ur/containers.h"

namespace nxSupport {

/// The service interfaces that code in a context can use, each registered by its class.
///
/// A domain creates one for its outermost context with a mode, and the domain's owner fills it in `onCallInfoCreated`.
/// The interfaces are not owned. Main thread only.
class NX_API CallInfo {
public:
    using Interfaces = ur::vector<std::pair<ur::TypeInfo, void*>>;

    /// Reserves space for a typical host, because one is created for each outermost context.
    CallInfo() { interfaces_.reserve(32); }
    CallInfo(CallInfo const&) = delete;
    CallInfo& operator=(CallInfo const&) = delete;

    /// The call information of the domain whose context began last. Returns an empty one if no context is active.
    [[nodiscard]] static CallInfo const& currentCallInfo();

    /// The first interface added under that type; null if there is none.
    [[nodiscard]] void* getByType(ur::TypeInfo type) const noexcept {
        for (auto const& [identity, interface] : interfaces_)
            if (identity == type) return interface;
        return nullptr;
    }
    /// The first interface added under T; null if there is none.
    template <class T>
    [[nodiscard]] T* get() const noexcept {
        return static_cast<T*>(getByType(ur::TypeInfo::of<T>()));
    }

    /// Adds an interface. Look-ups find it unless an earlier one has the same type.
    void add(ur::TypeInfo type, void* interface) { interfaces_.emplace_back(type, interface); }
    /// Adds `interface` under T, whatever its dynamic class is.
    template <class T>
    void add(T* interface) {
        add(ur::TypeInfo::of<T>(), interface);
    }
    void clearInterfaces() noexcept { interfaces_.clear(); }

    /// In the order in which they were added.
    [[nodiscard]] Interfaces const& interfaces() const noexcept { return interfaces_; }

private:
    Interfaces interfaces_;
};

/// The current call information. Short access to the host's services, as in `ci().get<Broadcaster>()`.
[[nodiscard]] NX_API CallInfo const& ci();

}  // namespace nxSupport
