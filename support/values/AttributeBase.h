// Base class of attributes of every value type.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/ur/ReferenceCount.h"

namespace nxSupport {

/// A value computed on demand. It holds references to the attributes that it is computed from.
class NX_API AttributeBase : public ur::ReferenceCount {
public:
    /// Whether the value can change from one evaluation to the next.
    [[nodiscard]] virtual bool dynamic() const = 0;

protected:
    AttributeBase() noexcept = default;
    AttributeBase(AttributeBase const&) noexcept = default;
    AttributeBase& operator=(AttributeBase const&) noexcept = default;
    ~AttributeBase() override = default;
};

}  // namespace nxSupport
