// Looking at what the host and its scripts do.
#pragma once

#include <optional>

#include "foundation/nxTXN/Manager.h"
#include "foundation/urOS/IOStream.h"
#include "foundation/urString/CString.h"
#include "krcache/Manager.h"
#include "support/messaging/Domain.h"
#include "support/services/Timeline.h"
#include "tools/nxhost/Options.h"

namespace nxhost {

/// Switches debug codes as NX_DEBUG says, records the time line for --trace, and counts for --stats. Owned by the host,
/// and goes before what it looks at.
class Diagnostics {
public:
    Diagnostics(Options const& options, nxSupport::Domain& domain, urKRCache::Manager& cache,
                nxTXN::Manager const& history);
    Diagnostics(Diagnostics const&) = delete;
    Diagnostics& operator=(Diagnostics const&) = delete;
    ~Diagnostics();

    /// Times of activities, counters of the cache and of the history, one subject a line.
    [[nodiscard]] urString::CString statistics() const;
    /// Prints the counts on the standard error and writes the time line to `trace`, as far as the options want that.
    urUtil::Error finish(urOS::IOStream& trace) const;

private:
    nxSupport::Domain& domain_;
    urKRCache::Manager& cache_;
    nxTXN::Manager const& history_;
    bool const showsStatistics_;
    std::optional<nxSupport::Timeline> timeline_;
};

}  // namespace nxhost
