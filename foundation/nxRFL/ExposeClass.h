// Registers a class and its native functions, one line each.
#pragma once

#include <concepts>

#include "foundation/nxRFL/ExposeClassBase.h"
#include "foundation/nxRFL/NativeFunction.h"

namespace nxRFL {

namespace impl {

/// Takes what has no type of its own, such as the name of an overloaded function.
struct Anything {
    Anything(...);
};

}  // namespace impl

/// A class whose objects can be charged for what they own; see `Class::setCharge`.
template <class T>
concept Charged = requires(T& object, std::shared_ptr<ur::Account> const& account) {
    object.chargeTo(account);
};

/// Registers T in a database. Methods are callables whose first argument can be a T& or T*: member functions, also of
/// bases of T, plain functions and lambdas. Each call returns *this, so that calls can be chained.
///
///     ExposeClass<Request>(database, "nxNet::Request")
///         .addProperty("url", &Request::getUrl, &Request::setUrl)
///         .addMethod("addHeader", &Request::addHeader);
template <class T>
class ExposeClass : public ExposeClassBase {
public:
    ExposeClass(Database& database, urString::CString const& name,
                impl::TypeUtil const& util = impl::defaultTypeUtil<T>())
        : ExposeClassBase(database, std::make_unique<Class>(name, util)) {
        if constexpr (Charged<T>) {
            getClass().setCharge([](void* object, std::shared_ptr<ur::Account> const& account) {
                static_cast<T*>(object)->chargeTo(account);
            });
        }
    }

    /// Requires: Base is registered.
    template <class Base>
    ExposeClass& addBase() {
        static_assert(std::derived_from<T, Base>, "addBase takes a public base of the class");
        Class::Conversion const toBase = [](void* object) -> void* {
            return static_cast<Base*>(static_cast<T*>(object));
        };
        Class::Conversion toThis = nullptr;
        if constexpr (std::is_polymorphic_v<Base>) {
            toThis = [](void* object) -> void* { return dynamic_cast<T*>(static_cast<Base*>(object)); };
        }
        ExposeClassBase::addBase(*getDB().getClass(ur::TypeInfo::of<Base>()), toBase, toThis);
        return *this;
    }
    /// `parameters` excludes the object: `addMethod("resize", &Brush::resize, {"width", {"depth", 1.0}})`.
    template <class Method>
    ExposeClass& addMethod(urString::CString const& name, Method method, Parameters parameters = {}) {
        ExposeClassBase::addMethod(name, make(std::move(method)), parameters);
        return *this;
    }
    /// An overloaded member function: cast it to one form, or pass several to `overloads`.
    template <class castTheOverloadedFunctionToOneForm = void>
    ExposeClass& addMethod(urString::CString const& name, ...) = delete;
    template <class castTheOverloadedFunctionToOneForm = void>
    ExposeClass& addMethod(urString::CString const& name, impl::Anything method, Parameters parameters) = delete;
    template <class Callable>
    ExposeClass& addStaticMethod(urString::CString const& name, Callable callable, Parameters parameters = {}) {
        ExposeClassBase::addStaticMethod(name, makeFunction(getDB(), std::move(callable)), parameters);
        return *this;
    }
    template <class Getter>
    ExposeClass& addProperty(urString::CString const& name, Getter getter) {
        ExposeClassBase::addProperty(name, make(std::move(getter)), nullptr);
        return *this;
    }
    /// A data member: `addProperty("x", &Place::x)`. Scripts cannot set a const member.
    template <class Value, class Owner>
    requires(!std::is_function_v<Value>) ExposeClass& addProperty(urString::CString const& name, Value Owner::*member) {
        static_assert(std::is_base_of_v<Owner, T>,
                      "a member of another class: it belongs to the exposed class or to a base of it");
        auto const get = [member](T& object) -> std::remove_cv_t<Value> { return object.*member; };
        if constexpr (std::is_const_v<Value>) {
            return addProperty(name, get);
        } else {
            return addProperty(name, get, [member](T& object, Value value) { object.*member = std::move(value); });
        }
    }
    template <class Getter, class Setter>
    ExposeClass& addProperty(urString::CString const& name, Getter getter, Setter setter) {
        ExposeClassBase::addProperty(name, make(std::move(getter)), make(std::move(setter)));
        return *this;
    }
    template <class Getter, class Setter>
    ExposeClass& addOtherNames(Getter getter, Setter setter) {
        ExposeClassBase::addOtherNames(make(std::move(getter)), make(std::move(setter)));
        return *this;
    }
    /// `begin` takes a T& and returns a std::unique_ptr to an iterator state of some class. `value` takes that state by
    /// reference and returns the current entry.
    template <class Begin, class Value>
    ExposeClass& addIterator(urString::CString const& name, Begin begin, Value value) {
        ExposeClassBase::addIterator(name, make(std::move(begin)), makeFunction(getDB(), std::move(value)));
        return *this;
    }
    /// Iterates over the map that `getMap` returns for a T&, in pairs of key and value.
    template <class GetMap>
    ExposeClass& addMapIterator(urString::CString const& name, GetMap getMap) {
        using MapState = MapIteratorState<std::remove_cvref_t<std::invoke_result_t<GetMap, T&>>>;
        return addIterator(
            name, [getMap](T& object) { return std::make_unique<MapState>(std::invoke(getMap, object)); },
            [](MapState& state) { return state.current(); });
    }
    ExposeClass& setHasHiddenSubclasses() {
        getClass().setHasHiddenSubclasses();
        return *this;
    }
    ExposeClass& setAliveTest(Class::AliveTest test) {
        getClass().setAliveTest(test);
        return *this;
    }

private:
    template <class Callable>
    ur::Reference<Function> make(Callable callable) {
        return makeFunction<T>(getDB(), std::move(callable));
    }
};

}  // namespace nxRFL
