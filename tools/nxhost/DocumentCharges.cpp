// Counts objects, values and records.
#include "tools/nxhost/DocumentCharges.h"

#include <algorithm>

namespace nxhost {

namespace {

constexpr std::size_t bytesOfName = 2048;
constexpr std::size_t bytesOfCallable = 512;
constexpr std::size_t bytesOfObject = 512;  // with its list of children and its place in the index
constexpr std::size_t bytesOfEntry = 64;    // of a value in its object
constexpr std::size_t bytesOfStep = 256;    // memory that the history does not count, such as the names of steps
constexpr std::size_t growthOfFile = 4;     // from the bytes of a file to those of its objects

}  // namespace

void DocumentCharges::chargeTo(std::shared_ptr<ur::Account> const& account) {
    if (names_) return;
    freeObjects_ = document_.objectCount();
    values_.chargeTo(account);
    for (ur::Charge* const charge : {&names_, &objects_, &history_}) *charge = ur::Charge(account, 0);
}

void DocumentCharges::addValue(KeptValues::ItemReference const& value, urString::CString const& name) {
    values_.add(value, bytesOfEntry + name.size());
}

/// When the account refuses, it has collected garbage first; that may have freed objects.
void DocumentCharges::addObject() {
    settle();
    try {
        objects_.add(bytesOfObject);
    } catch (ur::BudgetSpent const&) {
        settle();
        objects_.add(bytesOfObject);
    }
}

void DocumentCharges::addName() { names_.add(bytesOfName); }

void DocumentCharges::addCallable(urString::CString const& name) { names_.add(bytesOfCallable + name.size()); }

ur::Charge DocumentCharges::callable() const { return {names_.account(), bytesOfCallable}; }

ur::Charge DocumentCharges::room(std::uint64_t bytesOfFile) const {
    return {names_.account(), static_cast<std::size_t>(bytesOfFile) * growthOfFile};
}

void DocumentCharges::addOpened() {
    freeObjects_ = 0;
    settle();
    ur::vector<nxSupport::Object const*> left = {&document_.root()};
    while (!left.empty()) {
        nxSupport::Object const& object = *left.back();
        left.pop_back();
        for (nxSupport::Object const& child : object.children()) left.push_back(&child);
        auto const values = object.values();
        if (!values) continue;
        for (auto const& [name, value] : values->dictionary()) values_.addAnyway(value, bytesOfEntry + name.size());
    }
}

void DocumentCharges::settle() noexcept {
    std::size_t const objects = document_.objectCount();
    objects_.set((objects - std::min(objects, freeObjects_)) * bytesOfObject);
    auto const& history = document_.history();
    history_.set(history.historyBytes() + (history.undoCount() + history.redoCount()) * bytesOfStep);
    values_.settle();
}

}  // namespace nxhost
