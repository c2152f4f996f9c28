// What a property is, and what it shares with its joined set.
#pragma once

#include "support/properties/TxdProperty.h"
#include "support/properties/UnTxdProperty.h"

namespace nxSupport::impl {

/// The data objects of a property's joined set. Either may be null; both are for a property of neither kind.
struct JoinedData {
    explicit JoinedData(Property const& property) noexcept {
        if (TxdProperty const* const transacted = asTxd(property)) {
            txd = transacted->data().get();
            untxd = txd ? txd->untxdTwin() : nullptr;
        } else if (UnTxdProperty const* const untransacted = asUnTxd(property)) {
            untxd = untransacted->data().get();
            txd = untxd->txdData();
        }
    }

    /// The property as what it is; null when it is something else.
    [[nodiscard]] static TxdProperty const* asTxd(Property const& property) noexcept {
        return property.kind_ == Property::Kind::transacted ? static_cast<TxdProperty const*>(&property) : nullptr;
    }
    [[nodiscard]] static UnTxdProperty const* asUnTxd(Property const& property) noexcept {
        return property.kind_ == Property::Kind::untransacted ? static_cast<UnTxdProperty const*>(&property) : nullptr;
    }

    TxdPropertyData* txd = nullptr;
    UnTxdPropertyData* untxd = nullptr;
};

/// A reference to a property for the time of an emission, counted without virtual calls where its class is known.
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
