// Debug codes, time line, counters.
#include "tools/nxhost/Diagnostics.h"

#include <cstdio>
#include <string>
#include <utility>

#include "foundation/urOS/MemoryIOStream.h"
#include "support/services/Performance.h"
#include "support/services/debugList.h"

namespace nxhost {

using urString::CString;

namespace {

void switchDebugging(std::string const& list) {
    for (auto const& unknown : nxSupport::switchDebugCodes(list))
        std::fprintf(stderr, "nxhost: NX_DEBUG: %s\n", unknown.message().c_str());
}

CString times() {
    urOS::MemoryIOStream stream;
    static_cast<void>(stream.open(urOS::openForWriting));
    urOS::OStream out(stream);
    nxSupport::Performance::getInstance().printTimes(out);
    static_cast<void>(out.flush());
    return stream.contents();
}

}  // namespace

Diagnostics::Diagnostics(Options const& options, nxSupport::Domain& domain, urKRCache::Manager& cache,
                         nxTXN::Manager& history, ur::Account const& account)
    : domain_(domain), cache_(cache), history_(history), account_(account), showsStatistics_(options.statistics) {
    switchDebugging(options.debugCodes);
    if (options.traceFile.empty()) return;
    timeline_.emplace();
    domain_.setContextObserver(this);
    stepConnection_ = history_.changedSignal().addCallback([this] { markStep(); });
    cache_.setObserver(&*timeline_);
    nxSupport::Timeline::setActive(&*timeline_);
}

Diagnostics::~Diagnostics() {
    if (!timeline_) return;
    domain_.setContextObserver(nullptr);
    cache_.setObserver(nullptr);
}

void Diagnostics::onBegin(nxSupport::Context const& context, Clock::time_point when) {
    timeline_->onBegin(context, when);
}

void Diagnostics::onEnd(nxSupport::Context const& context, Clock::time_point when, Clock::duration lasted) {
    timeline_->onEnd(context, when, lasted);
    count("cache bytes", cache_.statistics().memoryUsed, cacheBytes_);
    count("history bytes", history_.historyBytes(), historyBytes_);
    count("script bytes", account_.used(), scriptBytes_);
}

void Diagnostics::markStep() {
    std::size_t const before = std::exchange(stepsDone_, history_.undoCount());
    if (stepsDone_ < before) timeline_->mark("undo " + std::string(history_.redoName()));
    if (stepsDone_ > before) timeline_->mark(history_.undoName());
}

void Diagnostics::count(char const* counter, std::size_t value, std::size_t& last) {
    if (std::exchange(last, value) != value) timeline_->count(counter, static_cast<double>(value));
}

CString Diagnostics::statistics() const {
    urKRCache::Statistics const counts = cache_.statistics();
    auto const number = [](auto count) { return static_cast<unsigned long long>(count); };
    CString text = times();
    text += CString::format("cache    limit %llu bytes, keys %d", number(cache_.getMemoryLimit64()), cache_.numKeys());
    for (auto const& row : urKRCache::statisticsRows) {
        text += CString::format(", %s %llu%s%s", row.name, number(counts.*row.value), *row.unit ? " " : "", row.unit);
    }
    text += "\n";
    text += CString::format("history  %llu steps to undo, %llu to redo, %llu bytes\n", number(history_.undoCount()),
                            number(history_.redoCount()), number(history_.historyBytes()));
    return text;
}

urUtil::Error Diagnostics::finish(urOS::IOStream& trace) const {
    if (showsStatistics_) std::fputs(statistics().c_str(), stderr);
    return timeline_ ? timeline_->write(trace) : urUtil::Error();
}

}  // namespace nxhost
