// Calls a function with an item as its own class.
#pragma once

#include <concepts>
#include <type_traits>
#include <utility>

#include "plst/Array.h"
#include "plst/Bool.h"
#include "plst/Dictionary.h"
#include "plst/Double.h"
#include "plst/String.h"

namespace nxPLST {

namespace impl {

template <class... Functions>
struct Overloaded : Functions... {
    using Functions::operator()...;
};

template <class Visitor>
inline constexpr bool takesAll =
    std::invocable<Visitor&, Bool const&>&& std::invocable<Visitor&, Double const&>&& std::invocable<
        Visitor&, String const&>&& std::invocable<Visitor&, Array const&>&& std::invocable<Visitor&, Dictionary const&>;

}  // namespace impl

/// Calls the one of `functions` whose parameter is the item's class, and returns its result:
///
///     visit(item, [](Array const& array) { ... }, [](Dictionary const& dictionary) { ... }, [](Item const&) { ... });
///
/// `Item const&` takes all classes that have no function of their own. An item of an unknown kind calls none; the
/// result is then a default value. Inlined: writing packets takes half the time.
template <class... Functions>
[[gnu::always_inline]] inline auto visit(Item const& item, Functions... functions) {
    using Visitor = impl::Overloaded<Functions...>;
    static_assert(impl::takesAll<Visitor>,
                  "nxPLST::visit needs a function for each class of items, or for Item const&");
    Visitor visitor{std::move(functions)...};
    switch (item.type()) {
        case BoolType: return visitor(static_cast<Bool const&>(item));
        case DoubleType: return visitor(static_cast<Double const&>(item));
        case StringType: return visitor(static_cast<String const&>(item));
        case ArrayType: return visitor(static_cast<Array const&>(item));
        case DictionaryType: return visitor(static_cast<Dictionary const&>(item));
    }
    return std::invoke_result_t<Visitor&, Bool const&>();
}

}  // namespace nxPLST
