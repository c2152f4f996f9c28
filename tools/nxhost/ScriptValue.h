// Property lists as values of scripts.
#pragma once

#include "foundation/nxRFL/typeName.h"
#include "plst/Item.h"

namespace nxRFL {
class Reader;
class Writer;
}  // namespace nxRFL

namespace nxhost {

/// Any value that a script passes and a property list can hold. Null is nil.
struct ScriptValue {
    ur::Reference<nxPLST::Item const> item;
};

/// About what a value occupies.
[[nodiscard]] std::size_t bytesOf(nxPLST::Item const& item);

/// Raises for what has no item form: objects, functions, nil inside a table, and what is nested too deeply.
void read(nxRFL::Reader& reader, ScriptValue& value);
void write(nxRFL::Writer& writer, ScriptValue const& value);

}  // namespace nxhost

template <>
struct nxRFL::TypeName<nxhost::ScriptValue> {
    static constexpr char const* name = "value";
};
