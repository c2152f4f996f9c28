// Saves the framework's value types in fields of transaction objects.
#pragma once

#include <cstdint>
#include <tuple>
#include <type_traits>
#include <utility>

#include "foundation/nxTXN/fields.h"
#include "foundation/ur/Export.h"
#include "foundation/ur/TypeInfo.h"
#include "foundation/urGeom/BoundingBox.h"
#include "foundation/urGeom/MeshSubset.h"
#include "foundation/urGeom/OrientedBox.h"
#include "foundation/urGeom/TopoMesh.h"
#include "foundation/urImage/Image.h"
#include "foundation/urLinear/AffineMatrix.h"
#include "foundation/urLinear/Line.h"
#include "foundation/urLinear/Plane.h"
#include "foundation/urLinear/Quaternion.h"
#include "foundation/urLinear/Range3d.h"
#include "foundation/urOS/Uuid.h"
#include "foundation/urString/IString.h"
#include "foundation/urUtil/Color.h"
#include "support/properties/Property.h"

namespace nxTXN {

// Multi-byte values are saved in the machine's byte order, because records live in memory only. `read` consumes exactly
// the bytes that `write` wrote. A `clear` of a value type does nothing.

/// Whether a type is saved as its bytes. To add a type of this form, add one line here.
template <class T>
inline constexpr bool savedAsBytes = false;
template <>
inline constexpr bool savedAsBytes<urLinear::AffineMatrix> = true;
template <>
inline constexpr bool savedAsBytes<urLinear::Point> = true;
template <>
inline constexpr bool savedAsBytes<urLinear::Vector> = true;
template <>
inline constexpr bool savedAsBytes<urLinear::Point2> = true;
template <>
inline constexpr bool savedAsBytes<urLinear::Point2Flt> = true;
template <>
inline constexpr bool savedAsBytes<urLinear::PointFlt> = true;
template <>
inline constexpr bool savedAsBytes<urGeom::BoundingBox> = true;
template <>
inline constexpr bool savedAsBytes<urUtil::Color> = true;

template <class T>
concept SavedAsBytes = savedAsBytes<T> && std::is_trivially_copyable_v<T>;

template <SavedAsBytes T>
void write(Writer& writer, T const& value) {
    writer.writeData(&value, sizeof value);
}
template <SavedAsBytes T>
void read(Reader& reader, T& value) {
    reader.readData(&value, sizeof value);
}
template <SavedAsBytes T>
void clear(Clear& /*cleared*/, T& /*value*/) {}

// Saves the members without the padding at the end.
NX_API void write(Writer& writer, urGeom::MeshCoord const& value);
NX_API void read(Reader& reader, urGeom::MeshCoord& value);
NX_API void write(Writer& writer, urOS::Uuid const& value);
NX_API void read(Reader& reader, urOS::Uuid& value);
// Reads through `Normal::set`, which applies its rule for lengths.
NX_API void write(Writer& writer, urLinear::Normal const& value);
NX_API void read(Reader& reader, urLinear::Normal& value);
NX_API void clear(Clear& cleared, urLinear::Normal& value);

namespace impl {

// The parts of a type that is saved part by part. To add a type of this form, add one function here.
template <class Value, class T>
concept Is = std::is_same_v<std::remove_const_t<Value>, T>;

auto partsOf(Is<urLinear::Line> auto& value) { return std::tie(value.point, value.direction); }
auto partsOf(Is<urLinear::Plane> auto& value) { return std::tie(value.point, value.normal); }
auto partsOf(Is<urLinear::ParamLine> auto& value) { return std::tie(value.start, value.end); }
auto partsOf(Is<urLinear::ParamPlane> auto& value) {
    return std::tie(value.origin, value.normal, value.uPoint, value.vPoint);
}
auto partsOf(Is<urLinear::Range3d> auto& value) { return std::tie(value.min, value.max); }
auto partsOf(Is<urLinear::Quaternion> auto& value) { return std::tie(value.x, value.y, value.z, value.w); }
auto partsOf(Is<urGeom::OrientedBox> auto& value) {
    return std::tie(value.center, value.axes[0], value.axes[1], value.axes[2], value.halfExtents[0],
                    value.halfExtents[1], value.halfExtents[2]);
}

}  // namespace impl

template <class T>
concept SavedInParts = requires(T& value) {
    impl::partsOf(value);
};

template <SavedInParts T>
void write(Writer& writer, T const& value) {
    std::apply([&](auto const&... parts) { (write(writer, parts), ...); }, impl::partsOf(value));
}
template <SavedInParts T>
void read(Reader& reader, T& value) {
    std::apply([&](auto&... parts) { (read(reader, parts), ...); }, impl::partsOf(value));
}
template <SavedInParts T>
void clear(Clear& /*cleared*/, T& /*value*/) {}

// A 4-byte length, then the bytes. An IString is saved in UTF-8, with its NUL counted.
NX_API void write(Writer& writer, urString::CString const& value);
NX_API void write(Writer& writer, urString::IString const& value);
NX_API void read(Reader& reader, urString::CString& value);
NX_API void read(Reader& reader, urString::IString& value);

/// The same for the native text of a path, with a 4-byte number of characters.
template <urString::FilePath Path>
void write(Writer& writer, Path const& path) {
    auto const& text = path.native();
    auto const size = static_cast<std::uint32_t>(text.size());
    writer.writeData(&size, sizeof size);
    writer.writeData(text.data(), size * sizeof(typename Path::value_type));
}
template <urString::FilePath Path>
void read(Reader& reader, Path& path) {
    std::uint32_t size = 0;
    reader.readData(&size, sizeof size);
    typename Path::string_type text(size, typename Path::value_type());
    reader.readData(text.data(), size * sizeof(typename Path::value_type));
    path = std::move(text);
}

// Pointers. A record keeps a property alive, but not the mesh of a mesh element.
NX_API void write(Writer& writer, ur::Reference<nxSupport::Property> const& reference);
NX_API void write(Writer& writer, ur::Reference<nxSupport::Property const> const& reference);
NX_API void write(Writer& writer, ur::TypeInfo const& value);
NX_API void write(Writer& writer, urGeom::TopoMeshEdge handle);
NX_API void write(Writer& writer, urGeom::TopoMeshFace handle);
NX_API void write(Writer& writer, urGeom::TopoMeshVertex handle);
NX_API void write(Writer& writer, urGeom::TopoMeshEntity entity);
NX_API void read(Reader& reader, ur::Reference<nxSupport::Property>& reference);
NX_API void read(Reader& reader, ur::Reference<nxSupport::Property const>& reference);
NX_API void read(Reader& reader, ur::TypeInfo& value);
NX_API void read(Reader& reader, urGeom::TopoMeshEdge& handle);
NX_API void read(Reader& reader, urGeom::TopoMeshFace& handle);
NX_API void read(Reader& reader, urGeom::TopoMeshVertex& handle);
NX_API void read(Reader& reader, urGeom::TopoMeshEntity& entity);
/// Releases the property.
NX_API void clear(Clear& cleared, ur::Reference<nxSupport::Property>& reference);
NX_API void clear(Clear& cleared, ur::Reference<nxSupport::Property const>& reference);
NX_API void clear(Clear& cleared, ur::TypeInfo& value);

/// The bytes that a field occupies outside its own object, for size hooks.
[[nodiscard]] NX_API std::uint32_t getSize(urGeom::CompactMesh const& mesh);
[[nodiscard]] NX_API std::uint32_t getSize(urGeom::MeshAdjTris const& adjacency);
[[nodiscard]] NX_API std::uint32_t getSize(urGeom::MeshAdjVertices const& adjacency);
[[nodiscard]] NX_API std::uint32_t getSize(urGeom::MeshSubset const& subset);
/// The bytes of the pixels plus 32, at most the largest value.
[[nodiscard]] NX_API std::uint32_t getSize(urImage::Image const& image);

}  // namespace nxTXN
