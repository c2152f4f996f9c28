// What a property shares with its joined set.
#pragma once

#include "support/properties/TxdProperty.h"
#include "support/properties/UnTxdProperty.h"

namespace nxSupport::impl {

/// The data objects of a property's joined set. Either may be null; both are for a property of neither kind.
struct JoinedData {
    explicit JoinedData(Property const& property);

    /// The property as what it is; null when it is something else.
    [[nodiscard]] static TxdProperty const* asTxd(Property const& property) noexcept;
    [[nodiscard]] static UnTxdProperty const* asUnTxd(Property const& property) noexcept;

    TxdPropertyData* txd = nullptr;
    UnTxdPropertyData* untxd = nullptr;
};

}  // namespace nxSupport::impl
