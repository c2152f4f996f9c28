// Diagnostics of the host and its scripts.
#pragma once

#include <optional>

#include "foundation/nxTXN/Manager.h"
#include "foundation/ur/Account.h"
#include "foundation/urOS/IOStream.h"
#include "foundation/urRTB/Connection.h"
#include "foundation/urString/CString.h"
#include "krcache/Manager.h"
#include "support/messaging/ContextObserver.h"
#include "support/messaging/Domain.h"
#include "support/services/Timeline.h"
#include "tools/nxhost/Options.h"

namespace nxhost {

/// Switches debug codes by NX_DEBUG, records the time line for --trace, and counts for --stats. Owned by the host, and
/// destroyed before the objects that it observes.
class Diagnostics : private nxSupport::ContextObserver {
public:
    Diagnostics(Options const& options, nxSupport::Domain& domain, urKRCache::Manager& cache, nxTXN::Manager& history,
                ur::Account const& account);
    Diagnostics(Diagnostics const&) = delete;
    Diagnostics& operator=(Diagnostics const&) = delete;
    ~Diagnostics() override;

    /// Times of activities, counters of the cache and of the history, one subject per line.
    [[nodiscard]] urString::CString statistics() const;
    /// Prints the counts on the standard error and writes the time line to `trace`, as the options request.
    urUtil::Error finish(urOS::IOStream& trace) const;

private:
    void onBegin(nxSupport::Context const& context, Clock::time_point when) override;
    void onEnd(nxSupport::Context const& context, Clock::time_point when, Clock::duration lasted) override;
    void markStep();
    void count(char const* counter, std::size_t value, std::size_t& last);

    nxSupport::Domain& domain_;
    urKRCache::Manager& cache_;
    nxTXN::Manager& history_;
    ur::Account const& account_;
    urRTB::ScopedConnection stepConnection_;
    std::size_t stepsDone_ = 0;
    // The values last recorded on the time line.
    std::size_t cacheBytes_ = 0;
    std::size_t historyBytes_ = 0;
    std::size_t scriptBytes_ = 0;
    bool const showsStatistics_;
    std::optional<nxSupport::Timeline> timeline_;
};

}  // namespace nxhost
