// The saved forms of the framework's value types, for transaction objects that record fields of them.
#pragma once

#include <cstdint>

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

// Multi-byte values are saved in the machine's own order: records live in memory only. `read` takes exactly what
// `write` gave. Where there is a `clear` for a value type, it has nothing to do.

// The bytes of the value.
NX_API void write(Writer& writer, urLinear::AffineMatrix const& value);
NX_API void write(Writer& writer, urLinear::Point const& value);
NX_API void write(Writer& writer, urLinear::Vector const& value);
NX_API void write(Writer& writer, urLinear::Point2 const& value);
NX_API void write(Writer& writer, urLinear::Point2Flt const& value);
NX_API void write(Writer& writer, urLinear::PointFlt const& value);
NX_API void write(Writer& writer, urGeom::BoundingBox const& value);
NX_API void write(Writer& writer, urGeom::MeshCoord const& value);
NX_API void write(Writer& writer, urOS::Uuid const& value);
NX_API void write(Writer& writer, urUtil::Color const& value);
NX_API void read(Reader& reader, urLinear::AffineMatrix& value);
NX_API void read(Reader& reader, urLinear::Point& value);
NX_API void read(Reader& reader, urLinear::Vector& value);
NX_API void read(Reader& reader, urLinear::Point2& value);
NX_API void read(Reader& reader, urLinear::Point2Flt& value);
NX_API void read(Reader& reader, urLinear::PointFlt& value);
NX_API void read(Reader& reader, urGeom::BoundingBox& value);
NX_API void read(Reader& reader, urGeom::MeshCoord& value);
NX_API void read(Reader& reader, urOS::Uuid& value);
NX_API void read(Reader& reader, urUtil::Color& value);
NX_API void clear(Clear& cleared, urLinear::AffineMatrix& value);
NX_API void clear(Clear& cleared, urLinear::Point& value);
NX_API void clear(Clear& cleared, urLinear::Vector& value);
NX_API void clear(Clear& cleared, urLinear::Point2& value);
NX_API void clear(Clear& cleared, urLinear::Point2Flt& value);
NX_API void clear(Clear& cleared, urLinear::PointFlt& value);

// The parts, one after the other. Normals are read through `Normal::set`, whose rule for lengths applies.
NX_API void write(Writer& writer, urLinear::Normal const& value);
NX_API void write(Writer& writer, urLinear::Line const& value);
NX_API void write(Writer& writer, urLinear::Plane const& value);
NX_API void write(Writer& writer, urLinear::ParamLine const& value);
NX_API void write(Writer& writer, urLinear::ParamPlane const& value);
NX_API void write(Writer& writer, urLinear::Range3d const& value);
NX_API void write(Writer& writer, urLinear::Quaternion const& value);
NX_API void write(Writer& writer, urGeom::OrientedBox const& value);
NX_API void read(Reader& reader, urLinear::Normal& value);
NX_API void read(Reader& reader, urLinear::Line& value);
NX_API void read(Reader& reader, urLinear::Plane& value);
NX_API void read(Reader& reader, urLinear::ParamLine& value);
NX_API void read(Reader& reader, urLinear::ParamPlane& value);
NX_API void read(Reader& reader, urLinear::Range3d& value);
NX_API void read(Reader& reader, urLinear::Quaternion& value);
NX_API void read(Reader& reader, urGeom::OrientedBox& value);
NX_API void clear(Clear& cleared, urLinear::Normal& value);
NX_API void clear(Clear& cleared, urLinear::Line& value);
NX_API void clear(Clear& cleared, urLinear::Plane& value);
NX_API void clear(Clear& cleared, urLinear::ParamLine& value);
NX_API void clear(Clear& cleared, urLinear::ParamPlane& value);
NX_API void clear(Clear& cleared, urLinear::Range3d& value);
NX_API void clear(Clear& cleared, urLinear::Quaternion& value);

// A length of four bytes, then the bytes; an IString in UTF-8, whose NUL counts.
NX_API void write(Writer& writer, urString::CString const& value);
NX_API void write(Writer& writer, urString::IString const& value);
NX_API void read(Reader& reader, urString::CString& value);
NX_API void read(Reader& reader, urString::IString& value);

// Pointers. The property is kept alive by the record; mesh elements are not, their mesh must be.
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
/// Lets go of the property.
NX_API void clear(Clear& cleared, ur::Reference<nxSupport::Property>& reference);
NX_API void clear(Clear& cleared, ur::Reference<nxSupport::Property const>& reference);
NX_API void clear(Clear& cleared, ur::TypeInfo& value);

/// What a field occupies beside its own object, for size hooks.
[[nodiscard]] NX_API std::uint32_t getSize(urGeom::CompactMesh const& mesh);
[[nodiscard]] NX_API std::uint32_t getSize(urGeom::MeshAdjTris const& adjacency);
[[nodiscard]] NX_API std::uint32_t getSize(urGeom::MeshAdjVertices const& adjacency);
[[nodiscard]] NX_API std::uint32_t getSize(urGeom::MeshSubset const& subset);
/// The pixels and 32 bytes; the largest value when it is more.
[[nodiscard]] NX_API std::uint32_t getSize(urImage::Image const& image);

}  // namespace nxTXN
