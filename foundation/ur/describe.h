// Describes user-defined types once for all value formats.
//
// An enumeration names its values, a structure lists its members, each in a function beside the type:
//
//     constexpr auto namesOf(Wood*) { return std::array{std::pair(Wood::oak, "oak"), std::pair(Wood::ash, "ash")}; }
//     template <class Visit>
//     void listMembers(Chair& chair, Visit&& visit) { visit("name", chair.name), visit("wood", chair.wood); }
//
// From then on values of it are items (plst/containers.h) and cross to scripts (foundation/nxRFL/values.h), an
// enumeration as the name, a structure as a dictionary of its members; and they are fields of transaction objects
// (foundation/nxTXN/fields.h). A structure needs a default constructor to be read.
#pragma once

#include <concepts>
#include <optional>
#include <string_view>
#include <type_traits>

namespace ur {

namespace impl {

struct IgnoreMembers {
    template <class T>
    void operator()(char const*, T&) const {}
};

template <class... Arguments>
inline constexpr bool isNamedMember = false;
template <class Name, class T>
inline constexpr bool isNamedMember<Name, T&> = std::convertible_to<Name, char const*>;

/// What `listMembers` calls with each name and member.
template <class Visit, bool mayChange>
struct MemberVisitor {
    Visit& visit;

    template <class T>
    void operator()(char const* name, T& member) const {
        static_assert(!mayChange || !std::is_const_v<T>,
                      "listMembers takes its structure as S&, not S const&, and lists no constant member");
        visit(name, member);
    }
    template <class... Arguments>
    requires(!isNamedMember<Arguments...>) void operator()(Arguments&&...) const {
        static_assert(isNamedMember<Arguments...>, "listMembers calls visit(name, member): a literal and a member");
    }
};

}  // namespace impl

template <class T>
concept NamedEnum = std::is_enum_v<T> && requires {
    namesOf(static_cast<T*>(nullptr));
};

template <class T>
concept ListsMembers = std::is_class_v<T> && requires(T& value) {
    listMembers(value, impl::IgnoreMembers());
};

/// Empty for a value without a name.
template <NamedEnum T>
[[nodiscard]] constexpr std::string_view nameOf(T value) {
    for (auto const& [named, name] : namesOf(static_cast<T*>(nullptr))) {
        if (named == value) return name;
    }
    return {};
}
template <NamedEnum T>
[[nodiscard]] constexpr std::optional<T> valueNamed(std::string_view wanted) {
    for (auto const& [value, name] : namesOf(static_cast<T*>(nullptr))) {
        if (name == wanted) return value;
    }
    return std::nullopt;
}

/// Calls `visit(name, member)` for the members of a value.
template <ListsMembers T, class Visit>
void visitMembers(T& value, Visit&& visit) {
    listMembers(value, impl::MemberVisitor<std::remove_reference_t<Visit>, true>{visit});
}
/// The same for a value that does not change.
template <ListsMembers T, class Visit>
void listConstMembers(T const& value, Visit&& visit) {
    auto const visitConst = [&visit](char const* name, auto const& member) { visit(name, member); };
    listMembers(const_cast<T&>(value), impl::MemberVisitor<decltype(visitConst), false>{visitConst});
}

}  // namespace ur
