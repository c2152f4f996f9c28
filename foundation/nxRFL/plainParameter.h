// Conversion between plain values and parameters or results.
#pragma once

#include "foundation/nxRFL/Class.h"
#include "foundation/nxRFL/values.h"

namespace nxRFL::impl {

template <class T>
concept PlainNumber = WholeNumber<T> || std::same_as<T, double> || std::same_as<T, float>;

template <class T>
concept PlainText = std::same_as<T, urString::CString> || std::same_as<T, std::string_view>;

template <class Parameter>
inline constexpr bool isChangeable =
    std::is_lvalue_reference_v<Parameter> && !std::is_const_v<std::remove_reference_t<Parameter>>;

/// Holds what a parameter binds to during a call. `take` is false for a value that does not fit.
template <class Parameter>
struct PlainParameter {
    static constexpr bool exists = false;
};

template <class Parameter>
requires(std::same_as<std::remove_cvref_t<Parameter>, bool> &&
         !isChangeable<Parameter>) struct PlainParameter<Parameter> {
    static constexpr bool exists = true;
    bool held = false;

    bool take(PlainValue const& value) noexcept {
        held = value.truth;
        return value.kind == PlainValue::Kind::boolean;
    }
};

template <class Parameter>
requires(PlainNumber<std::remove_cvref_t<Parameter>> && !isChangeable<Parameter>) struct PlainParameter<Parameter> {
    using Number = std::remove_cvref_t<Parameter>;
    static constexpr bool exists = true;
    Number held = 0;

    bool take(PlainValue const& value) noexcept {
        if (value.kind != PlainValue::Kind::number) return false;
        if constexpr (WholeNumber<Number>) {
            if (!(value.number >= WholeRange<Number>::least && value.number <= WholeRange<Number>::greatest))
                return false;
            held = static_cast<Number>(value.number);
            return static_cast<double>(held) == value.number;
        } else {
            held = static_cast<Number>(value.number);
            return true;
        }
    }
};

template <class Parameter>
requires(PlainText<std::remove_cvref_t<Parameter>> && !isChangeable<Parameter>) struct PlainParameter<Parameter> {
    static constexpr bool exists = true;
    urString::CString held;

    bool take(PlainValue const& value) {
        if (value.kind != PlainValue::Kind::text) return false;
        held = urString::CString(value.bytes, value.size);
        return true;
    }
};

/// Objects by reference.
template <class Parameter>
requires(std::is_lvalue_reference_v<Parameter>&& std::is_class_v<std::remove_cvref_t<Parameter>> &&
         !WalkState<std::remove_cvref_t<Parameter>> && !Readable<std::remove_cvref_t<Parameter>> &&
         !PlainText<std::remove_cvref_t<Parameter>>) struct PlainParameter<Parameter> {
    using T = std::remove_cvref_t<Parameter>;
    static constexpr bool exists = true;
    T* object = nullptr;

    bool take(PlainValue const& value) noexcept {
        if (value.kind != PlainValue::Kind::object || !value.objectClass->isAlive(value.pointer)) return false;
        object = static_cast<T*>(value.objectClass->cast(value.pointer, ur::TypeInfo::of<T>()));
        return object != nullptr;
    }
};

/// The argument for the parameter.
template <class Parameter>
decltype(auto) argumentOf(PlainParameter<Parameter>& parameter) {
    if constexpr (requires { parameter.object; }) {
        return *parameter.object;
    } else if constexpr (std::is_lvalue_reference_v<Parameter>) {
        return std::as_const(parameter.held);
    } else {
        return std::move(parameter.held);
    }
}

template <class Result>
inline constexpr bool plainResult =
    std::is_void_v<Result> || std::same_as<std::remove_cvref_t<Result>, bool> ||
    PlainNumber<std::remove_cvref_t<Result>> || std::same_as<std::remove_cvref_t<Result>, urString::CString>;

inline void setResult(PlainResult& result, std::same_as<bool> auto value) noexcept {
    result.kind = PlainValue::Kind::boolean;
    result.truth = value;
}
inline void setResult(PlainResult& result, PlainNumber auto value) {
    result.kind = PlainValue::Kind::number;
    if constexpr (WholeNumber<decltype(value)>) {
        result.number = doubleOf(value);
    } else {
        result.number = static_cast<double>(value);
    }
}
inline void setResult(PlainResult& result, urString::CString text) noexcept {
    result.kind = PlainValue::Kind::text;
    result.text = std::move(text);
}

}  // namespace nxRFL::impl
