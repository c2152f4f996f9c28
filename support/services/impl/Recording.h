// The events of a time line.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <unordered_map>
#include <utility>

#include "foundation/ur/TypeInfo.h"
#include "foundation/ur/containers.h"
#include "foundation/urOS/IOStream.h"
#include "foundation/urString/CString.h"
#include "support/services/Timeline.h"

namespace nxSupport::impl {

/// The events in the order in which they began, and the list of those that have not ended.
struct Recording {
    using Clock = std::chrono::steady_clock;
    using Index = std::size_t;

    enum class Kind : std::uint8_t { context, script, build, performance, drop, span, mark, counter };

    struct Event {
        std::int64_t begin;       ///< in nanoseconds since the time line was created
        std::int64_t duration;    ///< in nanoseconds; `open` until it has ended; for a counter the bits of its value
        std::uint32_t name;       ///< the mode or the activity; for other kinds an index in `names`
        std::uint32_t bytes = 0;  ///< for a span, the index of its result in `names`
        Kind kind;
        urKRCache::Leaving why{};
    };

    static constexpr std::int64_t open = -1;
    static constexpr Index notKept = ~Index(0);
    static constexpr std::size_t longestName = 120;  ///< in bytes; longer names are cut

    explicit Recording(std::size_t eventLimit) : limit(eventLimit) { openActivities.fill(notKept); }

    /// Does work that may run out of memory; a failure counts as a dropped event.
    template <class Work>
    void attempt(Work&& work) noexcept {
        try {
            work();
        } catch (...) {
            ++dropped;
        }
    }
    Index begin(Kind kind, std::uint32_t name, Clock::time_point when = Clock::now());
    /// An event that is not kept gets no name either.
    template <class Named>
    Index beginNamed(Kind kind, Named const& named) {
        return begin(kind, isFull() ? 0 : nameOf(named));
    }
    void end(Index index, std::int64_t now) noexcept;
    void end(Index index) noexcept { end(index, sinceOrigin(Clock::now())); }
    [[nodiscard]] std::int64_t sinceOrigin(Clock::time_point when) const noexcept;
    [[nodiscard]] bool isFull() const noexcept { return events.size() >= limit; }

    std::uint32_t nameOf(std::string_view text);
    std::uint32_t nameOf(ur::TypeInfo keyClass);

    std::size_t const limit;
    Clock::time_point const origin = Clock::now();
    std::deque<Event> events;  ///< a deque, because a growing vector would disturb the times being measured
    std::size_t dropped = 0;
    ur::vector<urString::CString> names;
    ur::map<urString::CString, std::uint32_t, urString::less> namePlaces;
    std::unordered_map<ur::TypeInfo, std::uint32_t> classNames;

    std::array<Index, numPerformanceCodes> openActivities;
    ur::vector<std::pair<Context const*, Index>> openContexts;
    ur::vector<Index> openScripts;
    ur::vector<Index> openBuilds;
};

}  // namespace nxSupport::impl
