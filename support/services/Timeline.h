// Records the times of an application's events for trace viewers.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "foundation/ur/Export.h"
#include "foundation/urOS/IOStream.h"
#include "krcache/ManagerObserver.h"
#include "support/messaging/ContextObserver.h"
#include "support/services/PerformanceCode.h"

namespace nxSupport {

namespace impl {
struct Recording;
}

/// Records the begin and end of contexts, script calls, performance scopes, cache builds and spans; drops by the cache;
/// marks; and values of counters. Writes them as trace-event JSON, which the common trace viewers open.
///
/// The host owns it and connects it: to contexts with `Domain::setContextObserver`, to the cache with
/// `urKRCache::Manager::setObserver`, to performance scopes and script calls with `setActive`. The host undoes the
/// first two before it destroys the time line. Recording never fails: beyond the limit, or without memory, new events
/// are counted but not kept. Main thread only.
class NX_API Timeline final : public ContextObserver, public urKRCache::ManagerObserver {
public:
    /// Keeps at most `limit` events of about 32 bytes each.
    explicit Timeline(std::size_t limit = 1U << 20U);
    Timeline(Timeline const&) = delete;
    Timeline& operator=(Timeline const&) = delete;
    ~Timeline() override;

    /// Sets the time line that records performance scopes and script calls from now on; null, the default, for none.
    static void setActive(Timeline* timeline) noexcept { active_ = timeline; }
    [[nodiscard]] static Timeline* active() noexcept { return active_; }

    /// Called by `PerfScope` when the time of an activity starts or ends.
    void beginPerformance(PerformanceCode code) noexcept;
    void endPerformance(PerformanceCode code) noexcept;

    /// Records the entry of a script function. Returns the previous depth of calls, for `endScriptCalls`.
    std::size_t beginScriptCall(std::string_view name) noexcept;
    /// Ends the calls deeper than `depth`: one when a function returns, several when an error leaves several functions.
    void endScriptCalls(std::size_t depth) noexcept;

    /// Begins something that may overlap with other spans, such as a transfer. Returns the argument for `endSpan`.
    std::size_t beginSpan(std::string_view name) noexcept;
    /// Ends a span with a result. Call it once for each span.
    void endSpan(std::size_t span, std::string_view result) noexcept;
    /// Records an event without duration, such as a step of the history.
    void mark(std::string_view name) noexcept;
    /// Records the value of a counter from now on.
    void count(std::string_view counter, double value) noexcept;

    void onBegin(Context const& context, ContextObserver::Clock::time_point when) noexcept override;
    void onEnd(Context const& context, ContextObserver::Clock::time_point when,
               ContextObserver::Clock::duration lasted) noexcept override;

    void onBuildBegin(ur::TypeInfo keyClass) noexcept override;
    void onBuildEnd(unsigned bytes) noexcept override;
    void onLeave(ur::TypeInfo keyClass, unsigned bytes, urKRCache::Leaving why) noexcept override;

    [[nodiscard]] std::size_t eventCount() const noexcept;
    /// The number of events that were not kept.
    [[nodiscard]] std::size_t droppedCount() const noexcept;

    /// Writes a complete trace of the recording so far. Events that have not ended appear as begun. Times are in
    /// microseconds since the time line was created.
    urUtil::Error write(urOS::IOStream& stream) const;

private:
    static inline Timeline* active_ = nullptr;
    std::unique_ptr<impl::Recording> recording_;
};

/// Records one script call on the active time line during its lifetime, even if the call ends with an error.
class NX_API ScriptCallScope {
public:
    explicit ScriptCallScope(std::string_view name) noexcept : timeline_(Timeline::active()) {
        if (timeline_) depth_ = timeline_->beginScriptCall(name);
    }
    ScriptCallScope(ScriptCallScope const&) = delete;
    ScriptCallScope& operator=(ScriptCallScope const&) = delete;
    ~ScriptCallScope() {
        if (timeline_ && timeline_ == Timeline::active()) timeline_->endScriptCalls(depth_);
    }

private:
    Timeline* timeline_;
    std::size_t depth_ = 0;
};

}  // namespace nxSupport
