// A script value that native code keeps.
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

/// A shared handle to one item of any kind that reflection carries, or to nothing: a number, a text, a table, an
/// object, a function.
///
/// Copies share the item, which lives as long as any of them; the last may go on any thread if what the item holds
/// may. What native code writes to scripts through it is a copy of the item.
class NX_API RegistryValue {
public:
    /// No value.
    RegistryValue() noexcept = default;
    /// Takes over `stack`, which holds exactly one item. A null item, or no stack, makes no value.
    explicit RegistryValue(nxRFL::Stack* stack);

    [[nodiscard]] explicit operator bool() const noexcept { return stack_ != nullptr; }

    /// The stack with the item, never null. Asking a handle without a value puts a null item into it: from then on it
    /// counts as one with a value.
    [[nodiscard]] nxRFL::Stack const* getItem() const;

private:
    mutable std::shared_ptr<nxRFL::Stack> stack_;
};

}  // namespace nxSupport

namespace nxRFL {

/// Copies the next item, of any kind; a null makes no value.
NX_API void read(Reader& reader, nxSupport::RegistryValue& value);
/// Copies the item; null for no value.
NX_API void write(Writer& writer, nxSupport::RegistryValue const& value);

template <>
struct TypeName<nxSupport::RegistryValue> {
    static constexpr char const* name = "value";
};

}  // namespace nxRFL
