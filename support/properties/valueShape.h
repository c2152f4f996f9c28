// Which items the conversions read as a given type.
#pragma once

#include <utility>

#include "foundation/urLinear/AffineMatrix.h"
#include "foundation/urLinear/Normal.h"
#include "foundation/urLinear/Point.h"
#include "foundation/urLinear/Quaternion.h"
#include "foundation/urLinear/Vector.h"
#include "foundation/urString/CString.h"
#include "foundation/urString/IString.h"
#include "foundation/urUtil/Color.h"
#include "plst/Parser.h"
#include "support/values/BoundedDouble.h"
#include "support/values/BoundedInt.h"

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
template <>
struct ValueShape<urLinear::Point2> : NumbersShape<2> {};
template <>
struct ValueShape<urLinear::Point> : NumbersShape<3> {};
template <>
struct ValueShape<urLinear::Vector> : NumbersShape<3> {};
template <>
struct ValueShape<urLinear::Normal> : NumbersShape<3> {};
template <>
struct ValueShape<BoundedDouble> : NumbersShape<3> {};
template <>
struct ValueShape<BoundedInt> : NumbersShape<3> {};
template <>
struct ValueShape<urLinear::Quaternion> : NumbersShape<4> {};
template <>
struct ValueShape<urUtil::Color> : NumbersShape<4> {};
template <>
struct ValueShape<urUtil::Color8> : NumbersShape<4> {};
template <>
struct ValueShape<urLinear::AffineMatrix> : NumbersShape<12> {};

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
