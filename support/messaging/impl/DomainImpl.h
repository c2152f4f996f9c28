// The private state of a domain.
#pragma once

#include <cstddef>
#include <memory>
#include <utility>

#include "foundation/ur/ImplBase.h"
#include "foundation/ur/containers.h"
#include "foundation/urOS/FirstError.h"
#include "support/messaging/CallInfo.h"
#include "support/messaging/Context.h"

namespace nxSupport {

class AsyncTask;
class ContextObserver;

/// Begins and ends the contexts of a domain, and keeps their modes and call information.
///
/// Any hook, observer or handler may destroy the domain, and this object with it. The domain then detaches its
/// contexts, so every step that calls one checks afterwards whether the context still has a domain.
struct DomainImpl final : ur::ImplBase {
    DomainImpl(Domain& owner, Domain* parent) noexcept : domain(owner), primary(parent ? parent : &owner) {}
    DomainImpl(DomainImpl const&) = delete;
    DomainImpl& operator=(DomainImpl const&) = delete;
    /// Detaches contexts that are still active.
    ~DomainImpl() override;

    /// If it throws, the context has not begun.
    void begin(Context const& context);
    void end(Context const& context, urOS::FirstError& errors) noexcept;
    void suppressCallInfo();
    void restoreCallInfo() noexcept;

    /// The active contexts of all domains, in the order in which they began.
    static ur::vector<Context const*>& active() noexcept;
    [[nodiscard]] bool owns(Context const* context) const noexcept { return context->domain_ == &domain; }

    Domain& domain;
    Domain* const primary;
    ur::vector<Context::Mode> modeStack;  ///< all modes except Bare
    std::shared_ptr<CallInfo> callInfo;
    std::size_t callInfoDepth = 0;  ///< size of the mode stack including the context that created `callInfo`; 0 without
                                    ///< it
    ur::vector<std::pair<std::shared_ptr<CallInfo>, std::size_t>> suppressedCallInfos;
    AsyncTask* asyncTask = nullptr;
    ContextObserver* observer = nullptr;

private:
    // The steps of `begin` and `end`. They return false if the domain was destroyed.
    [[nodiscard]] bool reportBegin(Context const& context);
    [[nodiscard]] bool createCallInfo(Context const& context);
    [[nodiscard]] bool dropCallInfo(Context const& context, urOS::FirstError& errors) noexcept;
    [[nodiscard]] bool leaveMode(Context const& context, urOS::FirstError& errors) noexcept;
    void leave(Context const& context, urOS::FirstError& errors) noexcept;

    void push(Context const& context);
    void popMode(Context const& context) noexcept;
    void pop(Context const& context) noexcept;
    /// Removes `ending`. A hook may have suppressed it, or may have released another one.
    void forget(std::shared_ptr<CallInfo> const& ending) noexcept;
};

}  // namespace nxSupport
