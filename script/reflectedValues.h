// How points, matrices, colours and their kin look in scripts.
#pragma once

#include "foundation/nxRFL/typeName.h"
#include "foundation/ur/Export.h"
#include "foundation/urLinear/AffineMatrix.h"
#include "foundation/urLinear/Plane.h"
#include "foundation/urLinear/Range1d.h"
#include "foundation/urLinear/Range3d.h"
#include "foundation/urUtil/Color.h"
#include "foundation/urUtil/HSL.h"

namespace nxRFL {

class Reader;
class Writer;

// Arrays of the components in storage order.

NX_API void read(Reader& reader, urLinear::Tuple2& value);
NX_API void read(Reader& reader, urLinear::Point2& value);
NX_API void read(Reader& reader, urLinear::Point2Flt& value);
NX_API void read(Reader& reader, urLinear::Vector2& value);
NX_API void read(Reader& reader, urLinear::Normal2& value);
NX_API void read(Reader& reader, urLinear::Point& value);
NX_API void read(Reader& reader, urLinear::PointFlt& value);
NX_API void read(Reader& reader, urLinear::Vector& value);
NX_API void read(Reader& reader, urLinear::VectorFlt& value);
NX_API void read(Reader& reader, urLinear::Normal& value);
NX_API void read(Reader& reader, urLinear::NormalFlt& value);
NX_API void read(Reader& reader, urLinear::AffineMatrix2& value);
NX_API void read(Reader& reader, urUtil::HSL& value);
NX_API void read(Reader& reader, urUtil::Color& value);

NX_API void write(Writer& writer, urLinear::Tuple2 const& value);
NX_API void write(Writer& writer, urLinear::Point2 const& value);
NX_API void write(Writer& writer, urLinear::Point2Flt const& value);
NX_API void write(Writer& writer, urLinear::Vector2 const& value);
NX_API void write(Writer& writer, urLinear::Normal2 const& value);
NX_API void write(Writer& writer, urLinear::Point const& value);
NX_API void write(Writer& writer, urLinear::PointFlt const& value);
NX_API void write(Writer& writer, urLinear::Vector const& value);
NX_API void write(Writer& writer, urLinear::VectorFlt const& value);
NX_API void write(Writer& writer, urLinear::Normal const& value);
NX_API void write(Writer& writer, urLinear::NormalFlt const& value);
NX_API void write(Writer& writer, urLinear::AffineMatrix2 const& value);
NX_API void write(Writer& writer, urUtil::HSL const& value);
NX_API void write(Writer& writer, urUtil::Color const& value);

// Dictionaries: of a plane "point" and "normal", of a range "min" and "max". What is missing stays as it is in a plane,
// and is 0 or the origin in a range.

NX_API void read(Reader& reader, urLinear::Plane& value);
NX_API void read(Reader& reader, urLinear::Range1d& value);
NX_API void read(Reader& reader, urLinear::Range3d& value);

NX_API void write(Writer& writer, urLinear::Plane const& value);
NX_API void write(Writer& writer, urLinear::Range1d const& value);
NX_API void write(Writer& writer, urLinear::Range3d const& value);

namespace impl {

/// The name of an array of so many numbers.
template <int count>
struct NumbersName {
    static_assert(count >= 2 && count <= 9);
    static constexpr char name[] = {'n', 'u', 'm', 'b', 'e', 'r', '[', '0' + count, ']', '\0'};
};

}  // namespace impl

template <>
struct TypeName<urLinear::Tuple2> : impl::NumbersName<2> {};
template <>
struct TypeName<urLinear::Point2> : impl::NumbersName<2> {};
template <>
struct TypeName<urLinear::Point2Flt> : impl::NumbersName<2> {};
template <>
struct TypeName<urLinear::Vector2> : impl::NumbersName<2> {};
template <>
struct TypeName<urLinear::Normal2> : impl::NumbersName<2> {};
template <>
struct TypeName<urLinear::Point> : impl::NumbersName<3> {};
template <>
struct TypeName<urLinear::PointFlt> : impl::NumbersName<3> {};
template <>
struct TypeName<urLinear::Vector> : impl::NumbersName<3> {};
template <>
struct TypeName<urLinear::VectorFlt> : impl::NumbersName<3> {};
template <>
struct TypeName<urLinear::Normal> : impl::NumbersName<3> {};
template <>
struct TypeName<urLinear::NormalFlt> : impl::NumbersName<3> {};
template <>
struct TypeName<urLinear::AffineMatrix2> : impl::NumbersName<6> {};
template <>
struct TypeName<urUtil::HSL> : impl::NumbersName<3> {};
template <>
struct TypeName<urUtil::Color> : impl::NumbersName<4> {};
template <>
struct TypeName<urLinear::Plane> {
    static constexpr char const* name = "plane";
};
template <>
struct TypeName<urLinear::Range1d> {
    static constexpr char const* name = "range1D";
};
template <>
struct TypeName<urLinear::Range3d> {
    static constexpr char const* name = "range3D";
};

}  // namespace nxRFL
