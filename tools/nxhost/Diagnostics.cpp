// Debug codes, time line, counters.
#include "tools/nxhost/Diagnostics.h"

#include <cstdio>

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
                         nxTXN::Manager const& history)
    : domain_(domain), cache_(cache), history_(history), showsStatistics_(options.statistics) {
    switchDebugging(options.debugCodes);
    if (options.traceFile.empty()) return;
    timeline_.emplace();
    domain_.setContextObserver(&*timeline_);
    cache_.setObserver(&*timeline_);
    nxSupport::Timeline::setActive(&*timeline_);
}

Diagnostics::~Diagnostics() {
    if (!timeline_) return;
    domain_.setContextObserver(nullptr);
    cache_.setObserver(nullptr);
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
