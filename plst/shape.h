// The shapes of items that conversions accept for a type.
#pragma once

#include <string>
#include <utility>

#include "plst/Parser.h"
#include "plst/convert.h"

namespace nxPLST {

/// The shape in which a T is written: `static bool matches(ur::Reference<Item const> const& item)`, false for null
/// unless a T may be empty. The types of plst/convert.h and plst/containers.h have one.
template <class T>
struct Shape;

/// A type that has a shape.
template <class T>
concept Shaped = requires {
    sizeof(Shape<T>);
};

/// Whether an item has exactly the shape in which a T is written.
template <Shaped T>
[[nodiscard]] bool hasShape(ur::Reference<Item const> const& item) {
    return Shape<T>::matches(item);
}

namespace impl {

template <bool (Parser::*check)()>
struct SingleShape {
    static bool matches(ur::Reference<Item const> const& item) {
        Parser parser(item, false);
        return (parser.*check)();
    }
};

}  // namespace impl

template <>
struct Shape<bool> : impl::SingleShape<&Parser::parseBool> {};
template <>
struct Shape<int> : impl::SingleShape<&Parser::parseDouble> {};
/// A number within the type's range.
template <impl::OtherInteger T>
struct Shape<T> {
    static bool matches(ur::Reference<Item const> const& item) {
        T any{};
        auto const number = asDouble(item);
        return number && impl::assignWhole(any, number->value());
    }
};
template <>
struct Shape<float> : impl::SingleShape<&Parser::parseDouble> {};
template <>
struct Shape<double> : impl::SingleShape<&Parser::parseDouble> {};
template <>
struct Shape<urString::CString> : impl::SingleShape<&Parser::parseString> {};
template <>
struct Shape<urString::IString> : impl::SingleShape<&Parser::parseString> {};
template <urString::FilePath Path>
struct Shape<Path> : impl::SingleShape<&Parser::parseString> {};
template <>
struct Shape<std::string> : impl::SingleShape<&Parser::parseString> {};
template <class T>
requires(arrayLength<T> > 0) struct Shape<T> {
    static bool matches(ur::Reference<Item const> const& item) {
        Parser parser(item, false);
        return parser.parseNumericArray(arrayLength<T>);
    }
};

}  // namespace nxPLST
