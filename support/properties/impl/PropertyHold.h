// Holds a property during an emission.
#pragma once

#include "support/properties/impl/JoinedData.h"

namespace nxSupport::impl {

/// Keeps a property alive during an emission. For known classes it counts without virtual calls.
class PropertyHold {
public:
    explicit PropertyHold(Property const& property) noexcept
        : reference_(ur::Reference<Property const>::adopt(&property)) {
        count(property, [](auto const& known) { known.ref(); });
    }
    PropertyHold(PropertyHold const&) = delete;
    PropertyHold& operator=(PropertyHold const&) = delete;
    ~PropertyHold() {
        count(*reference_.release(), [](auto const& known) { known.unref(); });
    }

    [[nodiscard]] Property const& property() const noexcept { return *reference_; }
    [[nodiscard]] ur::Reference<Property const> const& reference() const noexcept { return reference_; }

private:
    template <class Count>
    static void count(Property const& property, Count count) noexcept {
        if (UnTxdProperty const* const untransacted = JoinedData::asUnTxd(property)) return count(*untransacted);
        if (TxdProperty const* const transacted = JoinedData::asTxd(property)) return count(*transacted);
        count(property);
    }

    ur::Reference<Property const> reference_;
};

}  // namespace nxSupport::impl
