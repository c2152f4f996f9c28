// Script values in the form of property lists.
#pragma once

#include "foundation/nxRFL/typeName.h"
#include "foundation/ur/Account.h"
#include "foundation/ur/Export.h"
#include "plst/Item.h"

namespace nxRFL {
class Reader;
class Writer;
}  // namespace nxRFL

namespace nxSupport {

/// Any value of a script that has an item form, as a parameter, result or property of native functions. Null is nil.
///
///     exposed.addMethod("set", [](Object& self, CString const& name, ScriptValue const& value) {
///         self.setValue(name, value.item);
///     });
struct ScriptValue {
    ur::Reference<nxPLST::Item const> item;
    ur::Charge charge = {};  ///< for the bytes of an item that was read, to the account of the arguments
};

/// The approximate number of bytes that a value occupies.
[[nodiscard]] NX_API std::size_t bytesOf(nxPLST::Item const& item);

/// Raises for values without an item form: objects, functions, nil inside a table, and values nested too deeply.
NX_API void read(nxRFL::Reader& reader, ScriptValue& value);
/// Raises for a value nested too deeply, which only files and copies hold.
NX_API void write(nxRFL::Writer& writer, ScriptValue const& value);

}  // namespace nxSupport

template <>
struct nxRFL::TypeName<nxSupport::ScriptValue> {
    static constexpr char const* name = "value";
};
