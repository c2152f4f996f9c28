// The script forms of points, matrices, colours and similar values.
#pragma once

#include "foundation/nxRFL/typeName.h"
#include "foundation/nxRFL/values.h"
#include "foundation/ur/Export.h"
#include "foundation/urLinear/AffineMatrix.h"
#include "foundation/urLinear/Plane.h"
#include "foundation/urLinear/Range1d.h"
#include "foundation/urLinear/Range3d.h"
#include "foundation/urUtil/Color.h"
#include "foundation/urUtil/HSL.h"

namespace nxRFL {

/// The number of components of a type that scripts see as an array, in storage order; 0 for types of other forms. To
/// add a type of this form, add one line here.
template <class T>
inline constexpr int componentCount = 0;
template <>
inline constexpr int componentCount<urLinear::Tuple2> = 2;
template <>
inline constexpr int componentCount<urLinear::Point2> = 2;
template <>
inline constexpr int componentCount<urLinear::Point2Flt> = 2;
template <>
inline constexpr int componentCount<urLinear::Vector2> = 2;
template <>
inline constexpr int componentCount<urLinear::Normal2> = 2;
template <>
inline constexpr int componentCount<urLinear::Point> = 3;
template <>
inline constexpr int componentCount<urLinear::PointFlt> = 3;
template <>
inline constexpr int componentCount<urLinear::Vector> = 3;
template <>
inline constexpr int componentCount<urLinear::VectorFlt> = 3;
template <>
inline constexpr int componentCount<urLinear::Normal> = 3;
template <>
inline constexpr int componentCount<urLinear::NormalFlt> = 3;
template <>
inline constexpr int componentCount<urUtil::HSL> = 3;
template <>
inline constexpr int componentCount<urUtil::Color> = 4;
template <>
inline constexpr int componentCount<urLinear::AffineMatrix2> = urLinear::AffineMatrix2::size;

template <class T>
concept Components = (componentCount<T> > 0);

namespace impl {

template <class T>
decltype(auto) component(T& value, int index) {
    if constexpr (requires { value.coefficient(index); }) {
        return value.coefficient(index);
    } else {
        return value[index];
    }
}

}  // namespace impl

template <Components T>
void read(Reader& reader, T& value) {
    reader.startArray();
    for (int i = 0; i < componentCount<T>; ++i) read(reader, impl::component(value, i));
    reader.endArray();
}
/// A normal is set through its direction.
template <class T, int count>
requires Components<urLinear::BasicNormal<T, count>>
void read(Reader& reader, urLinear::BasicNormal<T, count>& value) {
    urLinear::BasicVector<T, count> direction;
    reader.startArray();
    for (int i = 0; i < count; ++i) read(reader, direction[i]);
    reader.endArray();
    value.set(direction);
}
template <Components T>
void write(Writer& writer, T const& value) {
    writer.startArray(componentCount<T>);
    for (int i = 0; i < componentCount<T>; ++i) write(writer, impl::component(value, i));
    writer.endArray();
}

template <Components T>
struct TypeName<T> {
    static_assert(componentCount<T> < 10);
    static constexpr char name[] = {'n', 'u', 'm', 'b', 'e', 'r', '[', '0' + componentCount<T>, ']', '\0'};
};

// Dictionaries: a plane has "point" and "normal", a range has "min" and "max". A missing entry stays unchanged in a
// plane, and becomes 0 or the origin in a range.

NX_API void read(Reader& reader, urLinear::Plane& value);
NX_API void read(Reader& reader, urLinear::Range1d& value);
NX_API void read(Reader& reader, urLinear::Range3d& value);

NX_API void write(Writer& writer, urLinear::Plane const& value);
NX_API void write(Writer& writer, urLinear::Range1d const& value);
NX_API void write(Writer& writer, urLinear::Range3d const& value);

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
