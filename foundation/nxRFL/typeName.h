// The names of native types in signatures.
#pragma once

#include <array>
#include <concepts>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "foundation/nxRFL/Database.h"
#include "foundation/nxRFL/IteratorState.h"
#include "foundation/ur/describe.h"
#include "foundation/urString/IString.h"

namespace nxRFL {

namespace impl {

template <class T>
inline constexpr bool isTextMap = false;
template <class T, class Less, class Allocator>
inline constexpr bool isTextMap<std::map<std::string, T, Less, Allocator>> = true;
template <class T, class Less, class Allocator>
inline constexpr bool isTextMap<std::map<urString::CString, T, Less, Allocator>> = true;
template <class T>
concept TextMap = isTextMap<T>;

}  // namespace impl

/// The name of a value type, as the member `name`; specialize it next to the type's `read` and `write`. A class without
/// a specialization has its registered name.
template <class T>
struct TypeName {};

/// Integer types other than bool.
template <class T>
concept WholeNumber = std::integral<T> && !std::same_as<T, bool>;

/// The state of an iterator, which passes to and from scripts as `IteratorState`.
template <class T>
concept WalkState = std::derived_from<T, IteratorState>;

template <>
struct TypeName<void> {
    static constexpr char const* name = "void";
};
template <>
struct TypeName<bool> {
    static constexpr char const* name = "boolean";
};
template <class T>
requires(WholeNumber<T> || std::floating_point<T>) struct TypeName<T> {
    static constexpr char const* name = "number";
};
template <>
struct TypeName<urString::CString> {
    static constexpr char const* name = "string";
};
template <>
struct TypeName<char const*> : TypeName<urString::CString> {};
template <>
struct TypeName<std::string> : TypeName<urString::CString> {};
template <>
struct TypeName<std::string_view> : TypeName<urString::CString> {};
template <>
struct TypeName<urString::IString> : TypeName<urString::CString> {};
template <urString::FilePath T>
struct TypeName<T> : TypeName<urString::CString> {};
template <ur::NamedEnum T>
struct TypeName<T> : TypeName<urString::CString> {};
template <>
struct TypeName<ur::Reference<Function>> {
    static constexpr char const* name = "function";
};
template <class Result, class... Arguments>
struct TypeName<std::function<Result(Arguments...)>> : TypeName<ur::Reference<Function>> {};
template <>
struct TypeName<Object> {
    static constexpr char const* name = "object";
};
template <class First, class Second>
struct TypeName<std::pair<First, Second>> {
    static constexpr char const* name = "object[2]";
};
template <class T>
struct TypeName<ur::vector<T>> {
    static constexpr char const* name = "array";
};
template <class T, std::size_t size>
struct TypeName<std::array<T, size>> : TypeName<ur::vector<T>> {};
template <class T, class Less>
struct TypeName<ur::map<urString::CString, T, Less>> {
    static constexpr char const* name = "dictionary";
};
template <impl::TextMap T>
struct TypeName<T> {
    static constexpr char const* name = "dictionary";
};
template <ur::ListsMembers T>
struct TypeName<T> {
    static constexpr char const* name = "dictionary";
};
template <class T>
struct TypeName<std::optional<T>> : TypeName<T> {};
template <WalkState T>
struct TypeName<T> {
    static constexpr char const* name = "nxRFL::IteratorState";
};

namespace impl {

/// A pointer to characters, which has no length.
template <class T>
inline constexpr bool isCText = std::is_same_v<T, char const*> || std::is_same_v<T, char*>;

// The class of an object passed by value, pointer or reference.
template <class T>
struct Handed {
    using Type = T;
};
template <class T>
struct Handed<T*> {
    using Type = std::remove_const_t<T>;
};
template <class T>
struct Handed<ur::Reference<T>> {
    using Type = std::remove_const_t<T>;
};
template <class T>
struct Handed<std::unique_ptr<T>> {
    using Type = T;
};

}  // namespace impl

/// The name of T in signatures: a value, or an object by value, pointer or reference.
template <class T>
[[nodiscard]] urString::CString typeName(Database const& database) {
    using Plain = std::remove_cvref_t<T>;
    using Target = typename impl::Handed<Plain>::Type;
    if constexpr (requires { TypeName<Plain>::name; }) {
        return TypeName<Plain>::name;
    } else if constexpr (requires { TypeName<Target>::name; }) {
        return TypeName<Target>::name;
    } else {
        return database.nameOf(ur::TypeInfo::of<Target>());
    }
}

}  // namespace nxRFL
