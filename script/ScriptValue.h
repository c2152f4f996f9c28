// Script values in the form of property lists.
#pragma once

#include "foundation/nxRFL/typeName.h"
#include "foundation/ur/Account.h"
#include "plst/Item.h"

namespace nxRFL {
class Reader;
class Writer;
}  // namespace nxRFL

namespace nxhost {

/// A value passed by a script, in a form that a property list can hold. Null is nil.
struct ScriptValue {
    ur::Reference<nxPLST::Item const> item;
    ur::Charge charge = {};  ///< for the bytes of an item that was read, to the account of the arguments
};

/// The approximate number of bytes that a value occupies.
[[nodiscard]] std::size_t bytesOf(nxPLST::Item const& item);

/// Raises for values without an item form: objects, functions, nil inside a table, and values nested too deeply.
void read(nxRFL::Reader& reader, ScriptValue& value);
/// Raises for a value nested too deeply, which only files and copies hold.
void write(nxRFL::Writer& writer, ScriptValue const& value);

}  // namespace nxhost

template <>
struct nxRFL::TypeName<nxhost::ScriptValue> {
    static constexpr char const* name = "value";
};
