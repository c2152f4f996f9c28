// The table of activities, and their stopwatches.
#include "support/services/Performance.h"

#include <array>

#include "foundation/urOS/OStream.h"

namespace nxSupport {
namespace {

struct Row {
    char const* labelFormat;
    bool inverse = false;
};

constexpr std::array<Row, numPerformanceCodes> rows = {{
    {"TASK PreBat ... = %.03f"},
    {"TASK PreExec ... = %.03f"},
    {"TASK Execute ... = %.03f"},
    {"TASK PostExec ... = %.03f"},
    {"Update Rel = %.03f"},
    {"Update Doc = %.03f"},
    {"Update UI = %.03f"},
    {"TASK PostBat ...  = %.03f"},
    {"Draw Init = %.03f"},
    {"Draw Scene = %.03f"},
    {"Draw Screen = %.03f"},
    {"Draw Xray = %.03f"},
    {"Draw ViewDp = %.03f"},
    {"Draw Select = %.03f"},
    {"Draw Shadow = %.03f"},
    {"Draw (total) = %.03f"},
    {"Tumble = %4.8f", true},
}};

/// Null for a value that is not an activity.
Row const* rowOf(PerformanceCode code) noexcept {
    return isActivity(code) ? &rows[static_cast<std::size_t>(code)] : nullptr;
}

}  // namespace

Performance& Performance::getInstance() {
    static Performance instance;
    return instance;
}

Performance::Performance() : watches_(rows.size()) {}

urOS::StopWatch& Performance::getWatch(PerformanceCode code) {
    if (isActivity(code)) return watches_[static_cast<std::size_t>(code)];
    static urOS::StopWatch nobodys;
    return nobodys = urOS::StopWatch();
}

bool& Performance::clearEachCharge() { return getInstance().clearEachCharge_; }

bool Performance::displayInverse(PerformanceCode code) noexcept {
    Row const* const row = rowOf(code);
    return row && row->inverse;
}

urString::CString Performance::labelFormat(PerformanceCode code) {
    Row const* const row = rowOf(code);
    return row ? row->labelFormat : "~ unknown ~";
}

void Performance::printTimes(urOS::OStream& out) const {
    for (std::size_t i = 0; i < watches_.size(); ++i) {
        double const seconds = watches_[i].elapsed();
        if (seconds <= 0) continue;
        out.print(rows[i].labelFormat, rows[i].inverse ? 1 / seconds : seconds);
        out.put('\n');
    }
}

}  // namespace nxSupport
