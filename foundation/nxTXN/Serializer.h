// How an object names the fields that are recorded for it.
#pragma once

#include "foundation/nxTXN/Clear.h"
#include "foundation/nxTXN/Reader.h"
#include "foundation/nxTXN/Writer.h"
#include "foundation/ur/Export.h"

namespace nxTXN {

class Object;

/// How fields of one type are kept: three plain functions, the same ones for every field of that type.
///
/// `write` saves a field in a record; `read` puts it back and takes exactly what `write` gave; `clear` lets go of
/// what the field holds when its object is about to be deleted. A null `clear` has nothing to let go of.
struct FieldHandlers {
    void (*write)(Writer& writer, void const* field);
    void (*read)(Reader& reader, void* field);
    void (*clear)(Clear& clear, void* field);
};

/// The handlers of T: the functions `write`, `read` and, where there is one, `clear` that overload resolution finds
/// for it. Namespace `nxTXN` is always searched.
template <class T>
inline constexpr FieldHandlers fieldHandlers = {
    [](Writer& writer, void const* field) { write(writer, *static_cast<T const*>(field)); },
    [](Reader& reader, void* field) { read(reader, *static_cast<T*>(field)); },
    [](Clear& cleared, void* field) {
        if constexpr (requires { clear(cleared, *static_cast<T*>(field)); }) clear(cleared, *static_cast<T*>(field));
    }};

/// Given to restore hooks: performs the restoring that the hook brackets.
class NX_API Restorer {
public:
    /// Puts the recorded fields back into `object`. Only the first call for the object of the hook does anything.
    virtual void restore(Object* object) = 0;

protected:
    ~Restorer() = default;
};

/// Called in place of restoring an object, which the hook performs through `restorer` at the moment it chooses.
/// If it does not, the object is restored when it returns.
using RestoreHook = void (*)(Object* object, Restorer& restorer);

/// Visits the fields of an object: to save them, to put them back or to clear them.
///
/// An `onTransact` brackets its fields with `beginObject` and `endObject` of itself and calls the `onTransact` of
/// its base in between. Nested brackets belong to the outermost one; of several hooks the first given counts.
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
        static_assert(
            requires(Writer & writer, Reader & reader, T const& saved) { write(writer, saved), read(reader, value); },
            "no nxTXN::write(Writer&, T const&) and read(Reader&, T&) for a field of this type: include "
            "foundation/nxTXN/fields.h or support/properties/fields.h, or add them");
        field(&value, &fieldHandlers<T>);
    }
};

}  // namespace nxTXN
