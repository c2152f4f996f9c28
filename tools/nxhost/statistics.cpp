// Counters, one subject a line.
#include "tools/nxhost/statistics.h"

namespace nxhost {

using urString::CString;

CString statisticsText(urKRCache::Manager const& cache, nxTXN::Manager const& history) {
    urKRCache::Statistics const counts = cache.statistics();
    auto const number = [](auto count) { return static_cast<unsigned long long>(count); };
    CString text =
        CString::format("cache    %llu bytes in memory, %llu at most, of %llu; %d keys\n", number(counts.memoryUsed),
                        number(counts.peakMemoryUsed), number(cache.getMemoryLimit64()), cache.numKeys());
    text += CString::format("         %llu hits, %llu builds, %llu evictions, %llu pages out, %llu pages in\n",
                            number(counts.hits), number(counts.builds), number(counts.clearedForLimit),
                            number(counts.pagesOut), number(counts.pagesIn));
    text += CString::format("history  %llu steps to undo, %llu to redo, %llu bytes\n", number(history.undoCount()),
                            number(history.redoCount()), number(history.historyBytes()));
    return text;
}

}  // namespace nxhost
