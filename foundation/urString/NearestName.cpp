// Compares names by edit distance.
#include "foundation/urString/NearestName.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

namespace urString {
namespace {

constexpr std::size_t longestCompared = 63;

/// The number of bytes to insert, delete or replace and of neighbours to exchange, to turn one into the other: the
/// optimal string alignment distance (Damerau, 1964; Wagner and Fischer, 1974).
std::size_t editDistance(std::string_view a, std::string_view b) {
    using Row = std::array<std::size_t, longestCompared + 1>;
    Row beforeLast{}, last{}, row{};
    std::iota(row.begin(), row.end(), 0U);
    for (std::size_t i = 0; i < a.size(); ++i) {
        beforeLast = std::exchange(last, row);
        row[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            std::size_t const replaced = last[j] + (a[i] == b[j] ? 0 : 1);
            row[j + 1] = std::min({replaced, row[j] + 1, last[j + 1] + 1});
            bool const exchanged = i > 0 && j > 0 && a[i] == b[j - 1] && a[i - 1] == b[j];
            if (exchanged) row[j + 1] = std::min(row[j + 1], beforeLast[j - 1] + 1);
        }
    }
    return row[b.size()];
}

}  // namespace

NearestName::NearestName(std::string_view wanted) : wanted_(wanted.substr(0, longestCompared)) {}

bool NearestName::offer(std::string_view name) {
    std::string_view const compared = name.substr(0, longestCompared);
    std::size_t const distance = editDistance(wanted_.view(), compared);
    std::size_t const most = std::max<std::size_t>(std::max(wanted_.size(), compared.size()) / 3, 1);
    if (wanted_.empty() || distance >= least_ || distance > most) return false;
    nearest_ = CString(name);
    least_ = distance;
    return true;
}

CString NearestName::question() const {
    return nearest_.empty() ? CString() : CString("; do you mean ").append(nearest_).append("?");
}

}  // namespace urString
