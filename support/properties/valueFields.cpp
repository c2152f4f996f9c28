// The saved forms of plain values: their bytes, or those of their parts.
#include "support/properties/fields.h"

namespace nxTXN {
namespace {

template <class T>
void writeBytes(Writer& writer, T const& value) {
    static_assert(std::is_trivially_copyable_v<T>);
    writer.writeData(&value, sizeof value);
}

template <class T>
void readBytes(Reader& reader, T& value) {
    static_assert(std::is_trivially_copyable_v<T>);
    reader.readData(&value, sizeof value);
}

template <class... Parts>
void writeParts(Writer& writer, Parts const&... parts) {
    (write(writer, parts), ...);
}

template <class... Parts>
void readParts(Reader& reader, Parts&... parts) {
    (read(reader, parts), ...);
}

}  // namespace

void write(Writer& writer, urLinear::AffineMatrix const& value) { writeBytes(writer, value); }
void write(Writer& writer, urLinear::Point const& value) { writeBytes(writer, value); }
void write(Writer& writer, urLinear::Vector const& value) { writeBytes(writer, value); }
void write(Writer& writer, urLinear::Point2 const& value) { writeBytes(writer, value); }
void write(Writer& writer, urLinear::Point2Flt const& value) { writeBytes(writer, value); }
void write(Writer& writer, urLinear::PointFlt const& value) { writeBytes(writer, value); }
void write(Writer& writer, urGeom::BoundingBox const& value) { writeBytes(writer, value); }
void write(Writer& writer, urOS::Uuid const& value) { writeBytes(writer, value); }
void write(Writer& writer, urUtil::Color const& value) { writeBytes(writer, value); }

void read(Reader& reader, urLinear::AffineMatrix& value) { readBytes(reader, value); }
void read(Reader& reader, urLinear::Point& value) { readBytes(reader, value); }
void read(Reader& reader, urLinear::Vector& value) { readBytes(reader, value); }
void read(Reader& reader, urLinear::Point2& value) { readBytes(reader, value); }
void read(Reader& reader, urLinear::Point2Flt& value) { readBytes(reader, value); }
void read(Reader& reader, urLinear::PointFlt& value) { readBytes(reader, value); }
void read(Reader& reader, urGeom::BoundingBox& value) { readBytes(reader, value); }
void read(Reader& reader, urOS::Uuid& value) {
    std::array<std::uint32_t, 4> words{};
    readBytes(reader, words);
    value = urOS::Uuid(words[0], words[1], words[2], words[3]);
}
void read(Reader& reader, urUtil::Color& value) { readBytes(reader, value); }

// Without the padding at the end.
void write(Writer& writer, urGeom::MeshCoord const& value) {
    writeBytes(writer, value.weights);
    writeBytes(writer, value.triangle);
}
void read(Reader& reader, urGeom::MeshCoord& value) {
    readBytes(reader, value.weights);
    readBytes(reader, value.triangle);
}

void write(Writer& writer, urLinear::Normal const& value) { writeBytes(writer, value); }
void read(Reader& reader, urLinear::Normal& value) {
    urLinear::Vector direction;
    readBytes(reader, direction);
    value.set(direction, urLinear::NormalPromise::none);
}

void write(Writer& writer, urLinear::Line const& value) { writeParts(writer, value.point, value.direction); }
void write(Writer& writer, urLinear::Plane const& value) { writeParts(writer, value.point, value.normal); }
void write(Writer& writer, urLinear::ParamLine const& value) { writeParts(writer, value.start, value.end); }
void write(Writer& writer, urLinear::ParamPlane const& value) {
    writeParts(writer, value.origin, value.normal, value.uPoint, value.vPoint);
}
void write(Writer& writer, urLinear::Range3d const& value) { writeParts(writer, value.min, value.max); }
void write(Writer& writer, urLinear::Quaternion const& value) {
    writeParts(writer, value.x, value.y, value.z, value.w);
}
void write(Writer& writer, urGeom::OrientedBox const& value) {
    writeParts(writer, value.center, value.axes[0], value.axes[1], value.axes[2]);
    writeParts(writer, value.halfExtents[0], value.halfExtents[1], value.halfExtents[2]);
}

void read(Reader& reader, urLinear::Line& value) { readParts(reader, value.point, value.direction); }
void read(Reader& reader, urLinear::Plane& value) { readParts(reader, value.point, value.normal); }
void read(Reader& reader, urLinear::ParamLine& value) { readParts(reader, value.start, value.end); }
void read(Reader& reader, urLinear::ParamPlane& value) {
    readParts(reader, value.origin, value.normal, value.uPoint, value.vPoint);
}
void read(Reader& reader, urLinear::Range3d& value) { readParts(reader, value.min, value.max); }
void read(Reader& reader, urLinear::Quaternion& value) { readParts(reader, value.x, value.y, value.z, value.w); }
void read(Reader& reader, urGeom::OrientedBox& value) {
    readParts(reader, value.center, value.axes[0], value.axes[1], value.axes[2]);
    readParts(reader, value.halfExtents[0], value.halfExtents[1], value.halfExtents[2]);
}

void clear(Clear& /*cleared*/, urLinear::AffineMatrix& /*value*/) {}
void clear(Clear& /*cleared*/, urLinear::Point& /*value*/) {}
void clear(Clear& /*cleared*/, urLinear::Vector& /*value*/) {}
void clear(Clear& /*cleared*/, urLinear::Point2& /*value*/) {}
void clear(Clear& /*cleared*/, urLinear::Point2Flt& /*value*/) {}
void clear(Clear& /*cleared*/, urLinear::PointFlt& /*value*/) {}
void clear(Clear& /*cleared*/, urLinear::Normal& /*value*/) {}
void clear(Clear& /*cleared*/, urLinear::Line& /*value*/) {}
void clear(Clear& /*cleared*/, urLinear::Plane& /*value*/) {}
void clear(Clear& /*cleared*/, urLinear::ParamLine& /*value*/) {}
void clear(Clear& /*cleared*/, urLinear::ParamPlane& /*value*/) {}
void clear(Clear& /*cleared*/, urLinear::Range3d& /*value*/) {}
void clear(Clear& /*cleared*/, urLinear::Quaternion& /*value*/) {}

}  // namespace nxTXN
