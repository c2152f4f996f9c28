// Converts values of the framework's types to items and back.
#pragma once

#include <cmath>
#include <concepts>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

#include "foundation/urLinear/AffineMatrix.h"
#include "foundation/urLinear/Normal.h"
#include "foundation/urLinear/Point.h"
#include "foundation/urLinear/Quaternion.h"
#include "foundation/urLinear/Vector.h"
#include "foundation/urString/CString.h"
#include "foundation/urString/IString.h"
#include "foundation/urUtil/Color.h"
#include "plst/casts.h"
#include "support/values/BoundedDouble.h"
#include "support/values/BoundedInt.h"

namespace nxPLST {

/// The number of elements in the numeric array of a T; 0 for types that are not such arrays.
template <class T>
inline constexpr int arrayLength = 0;
template <>
inline constexpr int arrayLength<urLinear::Point2> = 2;
template <>
inline constexpr int arrayLength<urLinear::Point> = 3;
template <>
inline constexpr int arrayLength<urLinear::Vector> = 3;
template <>
inline constexpr int arrayLength<urLinear::Normal> = 3;
template <>
inline constexpr int arrayLength<urLinear::Quaternion> = 4;  // x, y, z, w
template <>
inline constexpr int arrayLength<urLinear::AffineMatrix> = 12;  // its coefficients
template <>
inline constexpr int arrayLength<urUtil::Color> = 4;  // r, g, b, a
template <>
inline constexpr int arrayLength<urUtil::Color8> = 4;  // the same, 0 to 255
template <>
inline constexpr int arrayLength<nxSupport::BoundedDouble> = 3;  // value, minimum, maximum
template <>
inline constexpr int arrayLength<nxSupport::BoundedInt> = 3;

namespace impl {

/// The integer types other than int that are numbers, not characters or truth values.
template <class T>
concept OtherInteger =
    std::integral<T> && !std::same_as<T, int> && !std::same_as<T, bool> && !std::same_as<T, char> &&
    !std::same_as<T, wchar_t> && !std::same_as<T, char8_t> && !std::same_as<T, char16_t> && !std::same_as<T, char32_t>;

/// Stores `number` without its fraction. False, with `out` unchanged, if that is outside the type's range.
template <OtherInteger T>
bool assignWhole(T& out, double number) {
    using Limits = std::numeric_limits<T>;
    double const whole = std::trunc(number);
    // The greatest 64-bit integers have no double; the power of two above them has.
    bool const fits = whole >= static_cast<double>(Limits::lowest()) && whole < std::ldexp(1.0, Limits::digits);
    if (fits) out = static_cast<T>(whole);
    return fits;
}

}  // namespace impl

// To an item. `out` receives a new item in the type's only shape and releases its former item. An IString becomes UTF-8
// text, a null pointer the empty text, an item a deep copy; null stays null. Items hold doubles: an integer without a
// double, which is beyond 2^53, has no item form and becomes null.

NX_API void convert(ur::Reference<Item>& out, int value);
template <impl::OtherInteger T>
void convert(ur::Reference<Item>& out, T value);
NX_API void convert(ur::Reference<Item>& out, float value);
NX_API void convert(ur::Reference<Item>& out, double value);
NX_API void convert(ur::Reference<Item>& out, bool value);
NX_API void convert(ur::Reference<Item>& out, char const* value);
NX_API void convert(ur::Reference<Item>& out, urString::CString const& value);
NX_API void convert(ur::Reference<Item>& out, std::string_view value);
inline void convert(ur::Reference<Item>& out, std::string const& value) { convert(out, std::string_view(value)); }
NX_API void convert(ur::Reference<Item>& out, urString::IString const& value);
/// As an IString.
template <urString::FilePath Path>
void convert(ur::Reference<Item>& out, Path const& path) {
    convert(out, urString::IString(path));
}
NX_API void convert(ur::Reference<Item>& out, urLinear::Point2 const& value);
NX_API void convert(ur::Reference<Item>& out, urLinear::Point const& value);
NX_API void convert(ur::Reference<Item>& out, urLinear::Vector const& value);
NX_API void convert(ur::Reference<Item>& out, urLinear::Normal const& value);
NX_API void convert(ur::Reference<Item>& out, urLinear::Quaternion const& value);
NX_API void convert(ur::Reference<Item>& out, urLinear::AffineMatrix const& value);
NX_API void convert(ur::Reference<Item>& out, urUtil::Color const& value);
NX_API void convert(ur::Reference<Item>& out, urUtil::Color8 const& value);
NX_API void convert(ur::Reference<Item>& out, nxSupport::BoundedDouble const& value);
NX_API void convert(ur::Reference<Item>& out, nxSupport::BoundedInt const& value);
NX_API void convert(ur::Reference<Item>& out, ur::Reference<Item const> value);
template <impl::OtherInteger T>
void convert(ur::Reference<Item>& out, T value) {
    T copy{};
    bool const isExact = impl::assignWhole(copy, static_cast<double>(value)) && copy == value;
    out = nullptr;
    if (isExact) convert(out, static_cast<double>(value));
}
/// Other pointers would all become true.
template <class T>
void convert(ur::Reference<Item>& out, T const* value) = delete;

// From an item. An item of another shape, or null, leaves `out` unchanged.
//
// Arrays may be longer than needed. A number becomes an integer without its fraction; outside the range of an int it
// becomes the nearest limit, outside the range of another integer type it leaves `out` unchanged, as NaN does. A
// boolean can also be read from a number: true when it is not 0. A Color8 channel takes the low eight bits of the
// integer, however large; a channel that is not finite leaves `out` unchanged. A matrix is read from twelve numbers, or
// from three or four rows of at least four numbers each; the first three are the rows of the three-by-four matrix whose
// columns are the stored groups.

NX_API void convert(int& out, ur::Reference<Item const> item);
template <impl::OtherInteger T>
void convert(T& out, ur::Reference<Item const> item) {
    if (auto const number = asDouble(std::move(item))) static_cast<void>(impl::assignWhole(out, number->value()));
}
NX_API void convert(float& out, ur::Reference<Item const> item);
NX_API void convert(double& out, ur::Reference<Item const> item);
NX_API void convert(bool& out, ur::Reference<Item const> item);
NX_API void convert(urString::CString& out, ur::Reference<Item const> item);
NX_API void convert(std::string& out, ur::Reference<Item const> item);
NX_API void convert(urString::IString& out, ur::Reference<Item const> item);
template <urString::FilePath Path>
void convert(Path& out, ur::Reference<Item const> item) {
    urString::IString text = out;
    convert(text, std::move(item));
    out = text;
}
NX_API void convert(urLinear::Point2& out, ur::Reference<Item const> item);
NX_API void convert(urLinear::Point& out, ur::Reference<Item const> item);
NX_API void convert(urLinear::Vector& out, ur::Reference<Item const> item);
NX_API void convert(urLinear::Normal& out, ur::Reference<Item const> item);
NX_API void convert(urLinear::Quaternion& out, ur::Reference<Item const> item);
NX_API void convert(urLinear::AffineMatrix& out, ur::Reference<Item const> item);
NX_API void convert(urUtil::Color& out, ur::Reference<Item const> item);
NX_API void convert(urUtil::Color8& out, ur::Reference<Item const> item);
NX_API void convert(nxSupport::BoundedDouble& out, ur::Reference<Item const> item);
NX_API void convert(nxSupport::BoundedInt& out, ur::Reference<Item const> item);

// To a typed reference: null when the item is null or of another kind. The forms for const items share the source item,
// except that a dictionary is always copied deeply; the forms for mutable items always copy deeply.

NX_API void convert(ur::Reference<Item const>& out, ur::Reference<Item const> item);
NX_API void convert(ur::Reference<Array>& out, ur::Reference<Item const> item);
NX_API void convert(ur::Reference<Array const>& out, ur::Reference<Item const> item);
NX_API void convert(ur::Reference<Bool>& out, ur::Reference<Item const> item);
NX_API void convert(ur::Reference<Bool const>& out, ur::Reference<Item const> item);
NX_API void convert(ur::Reference<Dictionary>& out, ur::Reference<Item const> item);
NX_API void convert(ur::Reference<Dictionary const>& out, ur::Reference<Item const> item);
NX_API void convert(ur::Reference<Double>& out, ur::Reference<Item const> item);
NX_API void convert(ur::Reference<Double const>& out, ur::Reference<Item const> item);
NX_API void convert(ur::Reference<String>& out, ur::Reference<Item const> item);
NX_API void convert(ur::Reference<String const>& out, ur::Reference<Item const> item);

}  // namespace nxPLST
