// The value of an object's property in scripts: a value, or another object.
#pragma once

#include "foundation/nxRFL/values.h"
#include "script/ScriptValue.h"
#include "support/documents/Object.h"

namespace nxhost {

/// References between objects are texts with an identity; scripts may use the object in its place.
struct PropertyValue {
    nxSupport::ScriptValue value = {};
    nxSupport::Object* object = nullptr;  ///< if not null, it is the value

    /// In the form that the property holds.
    [[nodiscard]] ur::Reference<nxPLST::Item const> item() const {
        return object ? ur::Reference<nxPLST::Item const>(nxPLST::itemOf(object->id().asString())) : value.item;
    }
};

inline void read(nxRFL::Reader& reader, PropertyValue& value) {
    value = {};
    if (reader.kind() != nxRFL::Kind::object) return read(reader, value.value);
    value.object = static_cast<nxSupport::Object*>(reader.readObject(ur::TypeInfo::of<nxSupport::Object>()));
}

inline void write(nxRFL::Writer& writer, PropertyValue const& value) {
    if (value.object) return nxRFL::write(writer, value.object);
    write(writer, value.value);
}

}  // namespace nxhost

template <>
struct nxRFL::TypeName<nxhost::PropertyValue> : nxRFL::TypeName<nxSupport::ScriptValue> {};
