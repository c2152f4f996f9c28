// Records the notifications of properties for tests.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "foundation/nxTXN/Manager.h"
#include "plst/casts.h"
#include "support/properties/Property.h"

namespace nxSupport::test {

using PropertyReference = ur::Reference<Property>;
using Item = Property::ItemReference;

inline Item number(double value) { return ur::make<nxPLST::Double>(value); }
/// The number that a property holds, or -1.
inline double numberOf(Property const& property) {
    auto const item = nxPLST::asDouble(property.value());
    return item ? item->value() : -1;
}

constexpr char const* stageNames[] = {"start", "perform", "end"};

/// Listens to properties and records "name:stage" for each notification, separated by spaces. `take` empties it.
class Recorder {
public:
    void follow(PropertyReference const& property) {
        handles_.push_back(property->subscribe([this](ur::Reference<Property const> const& calls,
                                                      PropertyModType type) { add(*calls, stageNames[type]); }));
        if (auto* const signal = property->txnModifiedSignal()) {
            handles_.push_back(signal->addCallback([this](PropertyReference const& calls) { add(*calls, "txn"); }));
        }
    }
    void add(Property const& property, char const* stage) {
        if (!text_.empty()) text_ += ' ';
        text_ += std::string(property.name()) + ':' + stage;
        if (values) text_ += '=' + std::to_string(static_cast<int>(numberOf(property)));
    }
    std::string take() { return std::exchange(text_, {}); }

    bool values = false;  ///< whether to record the number at that moment as well

private:
    std::string text_;
    std::vector<urRTB::ScopedConnection> handles_;
};

template <class Change>
void edit(nxTXN::Manager& manager, Change change) {
    manager.begin("edit");
    change();
    manager.commit();
}

}  // namespace nxSupport::test
