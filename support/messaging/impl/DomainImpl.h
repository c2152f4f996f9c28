// The private state of a domain.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "foundation/ur/ImplBase.h"
#include "foundation/ur/containers.h"
#include "support/messaging/CallInfo.h"
#include "support/messaging/Context.h"

namespace nxSupport {

class AsyncTask;
class ContextObserver;

/// The stacks of a domain, kept together with the process-wide one that the current call information is found by.
struct DomainImpl final : ur::ImplBase {
    using CallInfoField = std::unique_ptr<CallInfo>;

    /// The call information of the domain of each active context in the process, in the order of their beginning.
    static ur::vector<CallInfoField const*> callInfoStack;

    explicit DomainImpl(Domain* primaryDomain) noexcept : primary(primaryDomain) {}
    DomainImpl(DomainImpl const&) = delete;
    DomainImpl& operator=(DomainImpl const&) = delete;
    /// Lets go of contexts that are still active.
    ~DomainImpl() override;

    /// All stacks or, when memory runs out, none.
    void push(Context const& context);
    void popMode(Context const& context) noexcept;
    /// All stacks but that of the modes.
    void pop(Context const& context) noexcept;

    void makeCallInfo();
    void dropCallInfo() noexcept;
    void suppress();
    void restore() noexcept;

    Domain* const primary;
    ur::vector<Context::Mode> modeStack;  ///< all but Bare ones
    CallInfoField callInfo;
    std::int32_t callInfoDepth = 0;  ///< size of the mode stack with the context that made it; 0 without
    ur::vector<Context const*> contexts;
    ur::vector<std::pair<CallInfoField, std::int32_t>> suppressedCallInfos;
    AsyncTask* asyncTask = nullptr;
    ContextObserver* observer = nullptr;
    CallInfoField spare;  ///< an empty one, so that contexts begun one after the other need no new memory
};

}  // namespace nxSupport
