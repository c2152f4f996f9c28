// Wraps native callables as reflected functions; their C++ signature is the reflected one.
#pragma once

#include <optional>
#include <tuple>
#include <type_traits>

#include "foundation/nxRFL/Overloads.h"
#include "foundation/nxRFL/Parameter.h"
#include "foundation/nxRFL/plainParameter.h"
#include "foundation/nxRFL/values.h"

namespace nxRFL {
namespace impl {

// Signature<Callable, Self>::Type is Result(Arguments...); for a member function of any class it is Result(Self&,
// Arguments...).
/// @cond  Excluded from the reference, whose generator would take it for its own base.
template <class Callable, class Self>
struct Signature : Signature<decltype(&Callable::operator()), void> {};
/// @endcond
template <class Result, class... Arguments, class Self>
struct Signature<Result (*)(Arguments...), Self> {
    using Type = Result(Arguments...);
};
template <class Result, class... Arguments, class Self>
struct Signature<Result (*)(Arguments...) noexcept, Self> : Signature<Result (*)(Arguments...), Self> {};
template <class Result, class Owner, class... Arguments, class Self>
struct Signature<Result (Owner::*)(Arguments...), Self> {
    using Type = Result(Self&, Arguments...);
};
template <class Result, class Owner, class... Arguments>
struct Signature<Result (Owner::*)(Arguments...), void> {
    using Type = Result(Arguments...);
};
template <class Result, class Owner, class... Arguments, class Self>
struct Signature<Result (Owner::*)(Arguments...) const, Self> : Signature<Result (Owner::*)(Arguments...), Self> {};
template <class Result, class Owner, class... Arguments, class Self>
struct Signature<Result (Owner::*)(Arguments...) noexcept, Self> : Signature<Result (Owner::*)(Arguments...), Self> {};
template <class Result, class Owner, class... Arguments, class Self>
struct Signature<Result (Owner::*)(Arguments...) const noexcept, Self>
    : Signature<Result (Owner::*)(Arguments...), Self> {};

template <class Callable>
concept HasSignature = std::is_pointer_v<Callable> || std::is_member_function_pointer_v<Callable> || requires {
    &Callable::operator();
};

template <class Self, class Callable>
inline constexpr bool isCallableOn = true;
template <class Self, class Function, class Owner>
requires(!std::is_void_v<Self>) inline constexpr bool isCallableOn<Self, Function Owner::*> =
    std::is_base_of_v<Owner, Self>;

template <class Self, class Signature>
inline constexpr bool takesFirst = false;
template <class Self, class Result, class First, class... Others>
inline constexpr bool takesFirst<Self, Result(First, Others...)> =
    std::is_class_v<std::remove_pointer_t<std::remove_cvref_t<First>>>;

/// Reads one argument and keeps what the parameter binds to: a value, or the address of an object or a text. A view of
/// a text lasts as long as the call, whose stack holds the text.
template <class Parameter>
auto readArgument(Reader& reader) {
    using T = std::remove_cvref_t<Parameter>;
    if constexpr (std::is_same_v<T, urString::CString> && std::is_reference_v<Parameter> && !isChangeable<Parameter>) {
        return std::cref(reader.readText());
    } else if constexpr (std::is_same_v<T, std::string_view>) {
        return reader.readText().view();
    } else if constexpr (WalkState<T>) {
        Reader const before(reader);
        auto* const state = static_cast<IteratorState*>(reader.readObject(ur::TypeInfo::of<IteratorState>()));
        auto* const own = dynamic_cast<T*>(state);
        if (!own) before.complain("must be an iterator of this function, but is one of another kind");
        return std::ref(*own);
    } else if constexpr (Readable<T>) {
        static_assert(std::default_initializable<T>, "a value that scripts pass has a default constructor");
        T value{};
        read(reader, value);
        return value;
    } else {
        static_assert(!std::is_enum_v<T>,
                      "no names of this enumeration's values: add namesOf (foundation/ur/describe.h)");
        static_assert(!isCText<T>, "a text is taken as a std::string, std::string_view or urString::CString");
        static_assert(std::is_lvalue_reference_v<Parameter>,
                      "an object is taken by pointer or reference, not by value");
        return std::ref(*static_cast<T*>(reader.readObject(ur::TypeInfo::of<T>())));
    }
}

template <class T>
inline constexpr bool isOptional = false;
template <class T>
inline constexpr bool isOptional<std::optional<T>> = true;

template <class Parameter, class Held>
decltype(auto) pass(Held& held) {
    if constexpr (std::is_lvalue_reference_v<Parameter>) {
        return (held);
    } else {
        return std::move(held);
    }
}

}  // namespace impl

/// Made of a callable and its signature.
template <class Callable, class Signature>
class NativeFunction;

/// Calls any callable, such as a plain function, a member function or a lambda. Checks the arguments and converts them
/// to the types of its parameters. What a parameter of type `std::string_view` shows lasts as long as the call.
template <class Callable, class Result, class... Parameters>
class NativeFunction<Callable, Result(Parameters...)> final : public Function {
public:
    NativeFunction(Database& database, Callable callable, bool method)
        : Function(&database, method), callable_(std::move(callable)) {
        setSignature({typeName<Result>(database), typeName<Parameters>(database)...});
        if constexpr (isPlain) setTakesPlainValues();
        std::size_t optionals = 0;
        ((optionals = impl::isOptional<std::remove_cvref_t<Parameters>> ? optionals + 1 : 0), ...);
        setOptionals(optionals);
    }

private:
    void onSetParameters(std::span<Parameter const> named) override {
        Function::onSetParameters(named);
        std::size_t next = isMethod() ? std::size_t(-1) : 0;  // a method's object has no name
        (checkDefault<Parameters>(named, next++), ...);
    }
    template <class T>
    void checkDefault(std::span<Parameter const> named, std::size_t index) const {
        if (index >= named.size() || !named[index].without) return;
        Reader reader(*named[index].without);
        try {
            static_cast<void>(impl::readArgument<T>(reader));
        } catch (Exception const& exception) {
            urString::CString const what = exception.what();  // "argument 1 must be number, but is string"
            std::size_t const must = what.find("must");
            failDefault(named[index], must == urString::CString::npos ? what : what.substr(must));
        }
    }

    static constexpr bool isPlain = impl::plainResult<Result> && (impl::PlainParameter<Parameters>::exists && ...);

    void onCall(Stack const& arguments, Stack& results) const override {
        validateArity(arguments, sizeof...(Parameters));
        [[maybe_unused]] Reader reader(arguments, *this);
        // Braces make the evaluation order left to right.
        std::tuple<decltype(impl::readArgument<Parameters>(reader))...> held{impl::readArgument<Parameters>(reader)...};
        std::apply([&](auto&... each) { callWith(results, impl::pass<Parameters>(each)...); }, held);
    }
    bool onCallPlain([[maybe_unused]] std::span<PlainValue const> arguments,
                     [[maybe_unused]] PlainResult& result) const override {
        if constexpr (isPlain) {
            if (arguments.size() != sizeof...(Parameters)) return false;
            std::tuple<impl::PlainParameter<Parameters>...> taken;
            auto const* argument = arguments.data();
            return std::apply(
                [&](auto&... each) {
                    if (!(each.take(*argument++) && ...)) return false;
                    callPlainWith(result, impl::argumentOf<Parameters>(each)...);
                    return true;
                },
                taken);
        } else {
            return false;
        }
    }
    template <class... Arguments>
    void callPlainWith([[maybe_unused]] PlainResult& result, Arguments&&... arguments) const {
        if constexpr (std::is_void_v<Result>) {
            std::invoke(callable_, std::forward<Arguments>(arguments)...);
        } else {
            impl::setResult(result, std::invoke(callable_, std::forward<Arguments>(arguments)...));
        }
    }
    template <class... Arguments>
    void callWith([[maybe_unused]] Stack& results, Arguments&&... arguments) const {
        if constexpr (std::is_void_v<Result>) {
            std::invoke(callable_, std::forward<Arguments>(arguments)...);
        } else {
            decltype(auto) result = std::invoke(callable_, std::forward<Arguments>(arguments)...);
            Writer writer(results);
            writeAny<Result>(writer, std::forward<Result>(result));
        }
    }

    Callable callable_;
};

/// `Self` is the class on whose objects scripts call the function, void for a free function. Returns a reflected
/// function unchanged.
template <class Self = void, class Callable>
[[nodiscard]] ur::Reference<Function> makeFunction(Database& database, Callable callable, Parameters parameters = {}) {
    ur::Reference<Function> function;
    if constexpr (std::convertible_to<Callable, ur::Reference<Function>>) {
        function = callable;
    } else {
        static_assert(impl::HasSignature<Callable>,
                      "a function with a signature is needed: a generic or overloaded one has several");
        using Signature = typename impl::Signature<Callable, Self>::Type;
        static_assert(impl::isCallableOn<Self, Callable>,
                      "a member function of another class: it belongs to the exposed class or to a base of it");
        static_assert(std::is_void_v<Self> || impl::takesFirst<Self, Signature>,
                      "a method of a class takes its object first, by reference");
        function = ur::make<NativeFunction<Callable, Signature>>(database, std::move(callable), !std::is_void_v<Self>);
    }
    if (parameters.size() > 0) function->setParameters(parameters);
    return function;
}
template <class Self = void, class... Callables>
[[nodiscard]] ur::Reference<Function> makeFunction(Database& database, Overloads<Callables...> overloads,
                                                   Parameters parameters = {}) {
    return std::apply(
        [&](auto&... callable) -> ur::Reference<Function> {
            return ur::make<OverloadedFunction>(database, ur::vector<ur::Reference<Function>>{makeFunction<Self>(
                                                              database, std::move(callable), parameters)...});
        },
        overloads.callables);
}

}  // namespace nxRFL
