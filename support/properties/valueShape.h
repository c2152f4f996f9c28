// Which items the conversions read as a given type.
#pragma once

#include <utility>

#include "foundation/urString/CString.h"
#include "foundation/urString/IString.h"
#include "plst/Parser.h"
#include "plst/convert.h"

namespace nxSupport {

namespace impl {

template <class T>
struct ValueShape;

template <bool (nxPLST::Parser::*check)()>
struct SingleShape {
    static bool matches(nxPLST::Parser& parser) { return (parser.*check)(); }
};
template <int count>
struct NumbersShape {
    static bool matches(nxPLST::Parser& parser) { return parser.parseNumericArray(count); }
};

template <>
struct ValueShape<bool> : SingleShape<&nxPLST::Parser::parseBool> {};
template <>
struct ValueShape<int> : SingleShape<&nxPLST::Parser::parseDouble> {};
template <>
struct ValueShape<float> : SingleShape<&nxPLST::Parser::parseDouble> {};
template <>
struct ValueShape<double> : SingleShape<&nxPLST::Parser::parseDouble> {};
template <>
struct ValueShape<urString::CString> : SingleShape<&nxPLST::Parser::parseString> {};
template <>
struct ValueShape<urString::IString> : SingleShape<&nxPLST::Parser::parseString> {};
template <class T>
requires(nxPLST::arrayLength<T> > 0) struct ValueShape<T> : NumbersShape<nxPLST::arrayLength<T>> {
};

}  // namespace impl

/// A type that has a shape: one of those that plst/convert.h lists.
template <class T>
concept PropertyValue = requires {
    sizeof(impl::ValueShape<T>);
};

/// Whether an item has exactly the shape that a T is written in; false for null.
template <PropertyValue T>
[[nodiscard]] bool hasShape(ur::Reference<nxPLST::Item const> item) {
    nxPLST::Parser parser(std::move(item), false);
    return impl::ValueShape<T>::matches(parser);
}

}  // namespace nxSupport
