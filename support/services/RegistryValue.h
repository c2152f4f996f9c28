// A script value held by native code.
#pragma once

#include <memory>

#include "foundation/nxRFL/Stack.h"
#include "foundation/nxRFL/typeName.h"
#include "foundation/ur/Export.h"

namespace nxRFL {

class Reader;
class Writer;

}  // namespace nxRFL

namespace nxSupport {

/// A shared handle to one item of any kind that reflection supports, such as a number, a text, a table, an object or a
/// function; or to nothing.
///
/// Copies share the item, which lives as long as any of them. The last copy may be destroyed on any thread if that is
/// safe for the item's content. Scripts receive a copy of the item.
class NX_API RegistryValue {
public:
    /// No value.
    RegistryValue() noexcept = default;
    /// Takes ownership of `stack`, which holds exactly one item. No value if the item is null or `stack` is null.
    explicit RegistryValue(nxRFL::Stack* stack);

    [[nodiscard]] explicit operator bool() const noexcept { return stack_ != nullptr; }

    /// The stack with the item, never null. If the handle has no value, this stores a null item in it, and it then
    /// counts as having a value.
    [[nodiscard]] nxRFL::Stack const* getItem() const;

private:
    mutable std::shared_ptr<nxRFL::Stack> stack_;
};

}  // namespace nxSupport

namespace nxRFL {

/// Copies the next item, of any kind. A null item gives no value.
NX_API void read(Reader& reader, nxSupport::RegistryValue& value);
/// Copies the item; writes null if there is no value.
NX_API void write(Writer& writer, nxSupport::RegistryValue const& value);

template <>
struct TypeName<nxSupport::RegistryValue> {
    static constexpr char const* name = "value";
};

}  // namespace nxRFL
