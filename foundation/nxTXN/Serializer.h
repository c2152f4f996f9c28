// The interface by which an object names its recorded fields.
#pragma once

#include "foundation/nxTXN/Clear.h"
#include "foundation/nxTXN/Reader.h"
#include "foundation/nxTXN/Writer.h"
#include "foundation/ur/Export.h"

namespace nxTXN {

class Object;

/// Saves, restores and releases fields of one type: three free functions, the same for every field of that type.
///
/// `write` saves a field in a record. `read` restores it and reads exactly what `write` wrote. `clear` releases what
/// the field holds when its object is about to be deleted; null if there is nothing to release.
struct FieldHandlers {
    void (*write)(Writer& writer, void const* field);
    void (*read)(Reader& reader, void* field);
    void (*clear)(Clear& clear, void* field);
};

namespace impl {

/// Saves a field, or a part of one.
template <class T>
void writeField(Writer& writer, T const& value) {
    static_assert(
        requires { write(writer, value); },
        "no nxTXN::write(Writer&, T const&) for a field of this type: include foundation/nxTXN/fields.h or "
        "support/properties/fields.h, or add it");
    write(writer, value);
}
template <class T>
void readField(Reader& reader, T& value) {
    static_assert(
        requires { read(reader, value); },
        "no nxTXN::read(Reader&, T&) for a field of this type: include foundation/nxTXN/fields.h or "
        "support/properties/fields.h, or add it");
    read(reader, value);
}

}  // namespace impl

/// The handlers of T: the functions `write`, `read` and, if it exists, `clear` that overload resolution finds.
/// Namespace `nxTXN` is always searched.
template <class T>
inline constexpr FieldHandlers fieldHandlers = {
    [](Writer& writer, void const* field) { impl::writeField(writer, *static_cast<T const*>(field)); },
    [](Reader& reader, void* field) { impl::readField(reader, *static_cast<T*>(field)); },
    [](Clear& cleared, void* field) {
        if constexpr (requires { clear(cleared, *static_cast<T*>(field)); }) clear(cleared, *static_cast<T*>(field));
    }};

/// Given to restore hooks: performs the restoring that the hook brackets.
class NX_API Restorer {
public:
    /// Restores the recorded fields of `object`. Only the first call for the hook's object has an effect.
    virtual void restore(Object* object) = 0;

protected:
    ~Restorer() = default;
};

/// Called instead of restoring an object; the hook restores it through `restorer` when it chooses. If it does not, the
/// object is restored after the hook returns.
using RestoreHook = void (*)(Object* object, Restorer& restorer);

/// Visits the fields of an object: to save, restore or clear them.
///
/// An `onTransact` brackets its fields with `beginObject` and `endObject` for itself and calls its base's `onTransact`
/// in between. Nested brackets belong to the outermost one; the first of several hooks counts.
class NX_API Serializer {
public:
    virtual ~Serializer() = default;

    /// `hook` may be null.
    virtual void beginObject(Object* object, RestoreHook hook) = 0;
    virtual void field(void* field, FieldHandlers const* handlers) = 0;
    virtual void endObject(Object* object) = 0;

    /// Records keep the address of `handlers`.
    void field(void* field, FieldHandlers const& handlers) { this->field(field, &handlers); }
    void field(void* field, FieldHandlers const&& handlers) = delete;
    /// A field with the handlers of its type.
    template <class T>
    void field(T& value) {
        field(&value, &fieldHandlers<T>);
    }
};

}  // namespace nxTXN
