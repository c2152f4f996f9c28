// How code finds the services of its host.
#pragma once

#include <utility>

#include "foundation/ur/Export.h"
#include "foundation/ur/TypeInfo.h"
#include "foundation/ur/containers.h"

namespace nxSupport {

/// The service interfaces that the code of a context can use, each under the identity of its class.
///
/// A domain makes one for its outermost context with a mode, and its owner fills it in `onCallInfoCreated`. The
/// interfaces are not owned. Main thread only.
class NX_API CallInfo {
public:
    using Interfaces = ur::vector<std::pair<ur::TypeInfo, void*>>;

    /// Room for the services of a usual host comes at once: one is made for each outermost context.
    CallInfo() { interfaces_.reserve(32); }
    CallInfo(CallInfo const&) = delete;
    CallInfo& operator=(CallInfo const&) = delete;

    /// The call information of the domain of the context begun last; an empty one when there is none.
    [[nodiscard]] static CallInfo const& currentCallInfo();

    /// The interface added first under that identity; null when there is none.
    [[nodiscard]] void* getByType(ur::TypeInfo type) const noexcept {
        for (auto const& [identity, interface] : interfaces_)
            if (identity == type) return interface;
        return nullptr;
    }
    /// The interface added first under T, likewise.
    template <class T>
    [[nodiscard]] T* get() const noexcept {
        return static_cast<T*>(getByType(ur::TypeInfo::of<T>()));
    }

    /// Appends an interface, which look-ups by that identity find from now on unless an earlier one has it.
    void add(ur::TypeInfo type, void* interface) { interfaces_.emplace_back(type, interface); }
    /// Adds `interface` under T itself, whatever its dynamic class is.
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

/// The current call information: the short way to the host's services, as in `ci().get<Broadcaster>()`.
[[nodiscard]] NX_API CallInfo const& ci();

}  // namespace nxSupport
