// Compares names by edit distance.
#include "foundation/urString/NearestName.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

namespace urString {
namespace {

constexpr std::size_t longestCompared = 63;

/// The number of bytes to insert, delete or replace to turn one into the other (Wagner and Fischer, 1974).
std::size_t editDistance(std::string_view a, std::string_view b) {
    std::array<std::size_t, longestCompared + 1> row{};
    std::iota(row.begin(), row.end(), 0U);
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < b.size(); ++j) {
            std::size_t const replaced = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row[b.size()];
}

}  // namespace

NearestName::NearestName(std::string_view wanted) : wanted_(wanted.substr(0, longestCompared)) {}

bool NearestName::offer(std::string_view name) {
    std::string_view const compared = name.substr(0, longestCompared);
    std::size_t const distance = editDistance(wanted_.view(), compared);
    if (distance >= least_ || 3 * distance > std::max(wanted_.size(), compared.size())) return false;
    nearest_ = CString(name);
    least_ = distance;
    return true;
}

CString NearestName::question() const {
    return nearest_.empty() ? CString() : CString("; do you mean ").append(nearest_).append("?");
}

}  // namespace urString
