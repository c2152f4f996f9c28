// The two data objects of a joined set.
#pragma once

#include "support/properties/TxdProperty.h"
#include "support/properties/UnTxdProperty.h"

namespace nxSupport::impl {

/// The data objects of a property's joined set. Either may be null; both are null for a property of neither kind.
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

    /// Casts the property to its class; null if it is of another kind.
    [[nodiscard]] static TxdProperty const* asTxd(Property const& property) noexcept {
        return property.kind_ == Property::Kind::transacted ? static_cast<TxdProperty const*>(&property) : nullptr;
    }
    [[nodiscard]] static UnTxdProperty const* asUnTxd(Property const& property) noexcept {
        return property.kind_ == Property::Kind::untransacted ? static_cast<UnTxdProperty const*>(&property) : nullptr;
    }

    TxdPropertyData* txd = nullptr;
    UnTxdPropertyData* untxd = nullptr;
};

}  // namespace nxSupport::impl
