// Base class of typed wrappers around properties.
#pragma once

#include <utility>

#include "support/properties/Property.h"

namespace nxSupport {

/// Holds a property, or nothing. Copies share the property.
class NX_API PropertyTBase {
public:
    PropertyTBase() = default;
    explicit PropertyTBase(ur::Reference<Property> property) : property_(std::move(property)) {}

    /// Replaces the property by a new one.
    void allocateTxd(nxTXN::Manager& manager, urString::CString const& name) {
        property_ = Property::createTxd(manager, name);
    }
    void allocateUnTxd(urString::CString const& name) { property_ = Property::createUnTxd(name); }

    /// May be null.
    [[nodiscard]] ur::Reference<Property> pty() const { return property_; }
    void reset(ur::Reference<Property> property) { property_ = std::move(property); }

private:
    ur::Reference<Property> property_;
};

}  // namespace nxSupport
