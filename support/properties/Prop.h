// Properties with a C++ type.
#pragma once

#include <concepts>
#include <utility>

#include "plst/make.h"
#include "support/properties/PropertyTBase.h"

namespace nxSupport {

/// A property whose value is read and set as a T, through T's item shape. A type without a shape, such as
/// `Units::Length`, can be stored as a number in a unit of your choice.
///
/// Holds no property at first; reading then returns the fallback and setting does nothing. Copies share the property.
template <class T>
class Prop : public PropertyTBase {
    static_assert(nxPLST::Shaped<T>,
                  "no item shape of this type: include plst/convert.h or plst/containers.h, or list its members or "
                  "names (foundation/ur/describe.h)");

public:
    using PropertyTBase::PropertyTBase;

    /// Without a value if it has no item form, as `nxPLST::itemOf` says.
    [[nodiscard]] static Prop createTxd(nxTXN::Manager& manager, urString::CString const& name, T const& value) {
        return Prop(Property::createTxd(manager, name, nxPLST::itemOf(value)));
    }
    [[nodiscard]] static Prop createUnTxd(urString::CString const& name, T const& value) {
        return Prop(Property::createUnTxd(name, nxPLST::itemOf(value)));
    }

    /// A text of another type: a std::string_view for a std::string.
    template <nxPLST::impl::TextFor<T> Text>
    [[nodiscard]] static Prop createTxd(nxTXN::Manager& manager, urString::CString const& name, Text const& value) {
        return createTxd(manager, name, T(value));
    }
    template <nxPLST::impl::TextFor<T> Text>
    [[nodiscard]] static Prop createUnTxd(urString::CString const& name, Text const& value) {
        return createUnTxd(name, T(value));
    }

    /// Whether there is a value with the shape of T.
    [[nodiscard]] bool isSet() const { return pty() && nxPLST::hasShape<T>(pty()->value()); }
    /// Returns `fallback` if there is no value of that shape.
    [[nodiscard]] T get(T fallback = nxPLST::impl::defaultOf<T>()) const {
        if (isSet()) nxPLST::convert(fallback, pty()->value());
        return fallback;
    }
    template <nxPLST::impl::TextFor<T> Text>
    [[nodiscard]] T get(Text const& fallback) const {
        return get(T(fallback));
    }
    /// As `Property::setValue`, but setting an equal value changes nothing, notifies nobody and adds no step: it
    /// returns true without asking validators. False, with nothing changed, if there is no property or the value has no
    /// item form, as `nxPLST::itemOf` says.
    bool set(T const& value) {
        ur::Reference<nxPLST::Item> item;
        if (!pty() || !nxPLST::impl::tryConvert(item, value)) return false;
        return nxPLST::equal(pty()->value(), item) || pty()->setValue(std::move(item));
    }
    /// One stage of an interactive edit, as `Property::setValue`: an equal value is also set, and listeners are
    /// notified.
    bool set(T const& value, PropertyModType type) {
        ur::Reference<nxPLST::Item> item;
        return pty() && nxPLST::impl::tryConvert(item, value) && pty()->setValue(std::move(item), type);
    }
    /// A text of another type: a std::string_view for a std::string.
    template <nxPLST::impl::TextFor<T> Text>
    bool set(Text const& value) {
        return set(T(value));
    }
    template <nxPLST::impl::TextFor<T> Text>
    bool set(Text const& value, PropertyModType type) {
        return set(T(value), type);
    }

    /// Calls `listener(value, type)` for changes through other members of the joined set, as long as the handle lives.
    /// Changes to values of another shape are skipped. Requires: there is a property.
    template <class F>
    [[nodiscard]] urRTB::ScopedConnection subscribe(F listener) {
        static_assert(std::invocable<F&, T const&, PropertyModType>,
                      "a listener of an nxSupport::Prop<T> is called with (T const&, PropertyModType)");
        return pty()->subscribe([listener = std::move(listener)](ur::Reference<Property const> const& property,
                                                                 PropertyModType type) mutable {
            auto const item = property->value();
            if (!nxPLST::hasShape<T>(item)) return;
            T value{};
            nxPLST::convert(value, item);
            listener(std::as_const(value), type);
        });
    }
};

}  // namespace nxSupport
