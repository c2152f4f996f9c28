// Refuses charges and schedules collections.
#include "foundation/ur/Account.h"

namespace ur {

char const* BudgetSpent::what() const noexcept { return "memory budget spent"; }

void Account::take(std::size_t bytes) {
    if (!allows(bytes)) {
        if (bounds_.collector) bounds_.collector->collect();
        if (!allows(bytes)) throw BudgetSpent();
    }
    takeAnyway(bytes);
}

void Account::noteCollection() noexcept {
    std::size_t const native = this->native();
    nextNative_ = native + std::max({leastPace, native, script_ / 2});
    if (bounds_.collectAt == unlimited) return;
    bounds_.collectAt = std::max(bounds_.collectAt, std::min(used() + bounds_.step, bounds_.allowed));
}

}  // namespace ur
