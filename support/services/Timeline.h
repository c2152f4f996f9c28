// A recording of what an application did when, for trace viewers.
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

/// Records when contexts, script calls, performance scopes, cache builds and spans begin and end, when the cache drops
/// resources, marks, and the course of counters; writes that as trace-event JSON, which the common trace viewers open.
///
/// The host owns it and connects what it wants to see: `Domain::setContextObserver` for contexts,
/// `urKRCache::Manager::setObserver` for the cache, `setActive` for performance scopes and script calls; it undoes
/// the first two before the time line goes. Recording never fails: beyond the limit, or without memory, what
/// begins is counted but not kept. Main thread only.
class NX_API Timeline final : public ContextObserver, public urKRCache::ManagerObserver {
public:
    /// Keeps at most so many events, of some 32 bytes each.
    explicit Timeline(std::size_t limit = 1U << 20U);
    Timeline(Timeline const&) = delete;
    Timeline& operator=(Timeline const&) = delete;
    ~Timeline() override;

    /// Where performance scopes and script calls are recorded from now on; null, as at first: nowhere.
    static void setActive(Timeline* timeline) noexcept { active_ = timeline; }
    [[nodiscard]] static Timeline* active() noexcept { return active_; }

    /// The time of an activity starts or ends. `PerfScope` calls these.
    void beginPerformance(PerformanceCode code) noexcept;
    void endPerformance(PerformanceCode code) noexcept;

    /// A script function of that name is entered. Gives the depth of calls before, for `endScriptCalls`.
    std::size_t beginScriptCall(std::string_view name) noexcept;
    /// Ends the calls that are deeper than `depth`: one when a function returns, several when an error has left
    /// several at once.
    void endScriptCalls(std::size_t depth) noexcept;

    /// Something that overlaps with other things begins, such as a transfer. Gives what `endSpan` takes.
    std::size_t beginSpan(std::string_view name) noexcept;
    /// It ends, once, with that result.
    void endSpan(std::size_t span, std::string_view result) noexcept;
    /// Something has happened, such as a step of the history.
    void mark(std::string_view name) noexcept;
    /// A counter has this value from now on.
    void count(std::string_view counter, double value) noexcept;

    void onBegin(Context const& context, ContextObserver::Clock::time_point when) noexcept override;
    void onEnd(Context const& context, ContextObserver::Clock::time_point when,
               ContextObserver::Clock::duration lasted) noexcept override;

    void onBuildBegin(ur::TypeInfo keyClass) noexcept override;
    void onBuildEnd(unsigned bytes) noexcept override;
    void onLeave(ur::TypeInfo keyClass, unsigned bytes, urKRCache::Leaving why) noexcept override;

    [[nodiscard]] std::size_t eventCount() const noexcept;
    /// Events that were not kept.
    [[nodiscard]] std::size_t droppedCount() const noexcept;

    /// Writes a whole trace of what has been recorded so far; what has not ended yet appears as begun. Times are
    /// in microseconds since the time line was made.
    urUtil::Error write(urOS::IOStream& stream) const;

private:
    static inline Timeline* active_ = nullptr;
    std::unique_ptr<impl::Recording> recording_;
};

/// Records one script call on the active time line, from its making to its end, however the call ends.
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
