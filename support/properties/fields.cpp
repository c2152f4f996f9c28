// Saves types that are neither saved as bytes nor part by part, and returns the sizes of large fields.
#include "support/properties/fields.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <typeinfo>

namespace nxTXN {
namespace {

void writeText(Writer& writer, char const* text, std::size_t size) {
    write(writer, static_cast<std::uint32_t>(size));
    writer.writeData(text, size);
}

/// Empty if nothing was written.
urString::CString readText(Reader& reader) {
    std::uint32_t size = 0;
    read(reader, size);
    urString::CString text;
    text.resizeAndOverwrite(std::min<std::size_t>(size, reader.remaining()), [&reader](char* bytes, std::size_t count) {
        reader.readData(bytes, count);
        return count;
    });
    return text;
}

// A transacted property is written as its manager's object, so that its last reference still ends its existence.
void writeProperty(Writer& writer, nxSupport::Property const* property) {
    if (auto const* const object = dynamic_cast<Object const*>(property)) {
        writer.writePtr(property, object);
    } else {
        writer.writePtr(property);
    }
}

template <class T>
void readProperty(Reader& reader, ur::Reference<T>& reference) {
    reference.reset(static_cast<nxSupport::Property*>(reader.readPtr()));
}

template <class Handle>
void writeHandle(Writer& writer, Handle handle) {
    writer.writePtr(static_cast<void const*>(handle.element()));
}

template <class Handle>
void readHandle(Reader& reader, Handle& handle) {
    handle = Handle(static_cast<decltype(handle.element())>(reader.readPtr()));
}

}  // namespace

void write(Writer& writer, urOS::Uuid const& value) { writer.writeData(&value, sizeof value); }
void read(Reader& reader, urOS::Uuid& value) {
    std::array<std::uint32_t, 4> words{};
    reader.readData(words.data(), sizeof words);
    value = urOS::Uuid(words[0], words[1], words[2], words[3]);
}

void write(Writer& writer, urGeom::MeshCoord const& value) {
    writer.writeData(&value.weights, sizeof value.weights);
    writer.writeData(&value.triangle, sizeof value.triangle);
}
void read(Reader& reader, urGeom::MeshCoord& value) {
    reader.readData(&value.weights, sizeof value.weights);
    reader.readData(&value.triangle, sizeof value.triangle);
}

void write(Writer& writer, urLinear::Normal const& value) { writer.writeData(&value, sizeof value); }
void read(Reader& reader, urLinear::Normal& value) {
    urLinear::Vector direction;
    reader.readData(&direction, sizeof direction);
    value.set(direction, urLinear::NormalPromise::none);
}
void clear(Clear& /*cleared*/, urLinear::Normal& /*value*/) {}

void write(Writer& writer, urString::CString const& value) { writeText(writer, value.c_str(), value.length()); }
void read(Reader& reader, urString::CString& value) { value = readText(reader); }

void write(Writer& writer, urString::IString const& value) {
    writeText(writer, value.asUTF8().c_str(), value.asUTF8StoreSize());
}
void read(Reader& reader, urString::IString& value) {
    urString::CString const text = readText(reader);
    bool const ended = !text.empty() && text[text.length() - 1] == '\0';
    value.assign(text.c_str(), text.length() - (ended ? 1 : 0), urString::Encoding::utf8);
}

void write(Writer& writer, ur::Reference<nxSupport::Property> const& reference) {
    writeProperty(writer, reference.get());
}
void write(Writer& writer, ur::Reference<nxSupport::Property const> const& reference) {
    writeProperty(writer, reference.get());
}
void read(Reader& reader, ur::Reference<nxSupport::Property>& reference) { readProperty(reader, reference); }
void read(Reader& reader, ur::Reference<nxSupport::Property const>& reference) { readProperty(reader, reference); }
void clear(Clear& cleared, ur::Reference<nxSupport::Property>& reference) { cleared.release(reference); }
void clear(Clear& cleared, ur::Reference<nxSupport::Property const>& reference) { cleared.release(reference); }

void write(Writer& writer, ur::TypeInfo const& value) {
    writer.writePtr(static_cast<void const*>(std::bit_cast<std::type_info const*>(value)));
}
void read(Reader& reader, ur::TypeInfo& value) {
    if (auto const* const info = static_cast<std::type_info const*>(reader.readPtr())) value = ur::TypeInfo(*info);
}
void clear(Clear& /*cleared*/, ur::TypeInfo& /*value*/) {}

void write(Writer& writer, urGeom::TopoMeshEdge handle) { writeHandle(writer, handle); }
void write(Writer& writer, urGeom::TopoMeshFace handle) { writeHandle(writer, handle); }
void write(Writer& writer, urGeom::TopoMeshVertex handle) { writeHandle(writer, handle); }
void write(Writer& writer, urGeom::TopoMeshEntity entity) {
    write(writer, entity.kind);
    writer.writePtr(static_cast<void const*>(entity.element));
}
void read(Reader& reader, urGeom::TopoMeshEdge& handle) { readHandle(reader, handle); }
void read(Reader& reader, urGeom::TopoMeshFace& handle) { readHandle(reader, handle); }
void read(Reader& reader, urGeom::TopoMeshVertex& handle) { readHandle(reader, handle); }
void read(Reader& reader, urGeom::TopoMeshEntity& entity) {
    read(reader, entity.kind);
    entity.element = reader.readPtr();
}

std::uint32_t getSize(urGeom::CompactMesh const& mesh) { return mesh.numBytes(); }
std::uint32_t getSize(urGeom::MeshAdjTris const& adjacency) { return adjacency.numBytesUsed(); }
std::uint32_t getSize(urGeom::MeshAdjVertices const& adjacency) { return adjacency.numBytesUsed(); }
std::uint32_t getSize(urGeom::MeshSubset const& subset) { return subset.numBytesUsed(); }
std::uint32_t getSize(urImage::Image const& image) {
    constexpr std::uint64_t most = std::numeric_limits<std::uint32_t>::max();
    constexpr std::uint64_t header = 32;
    if (image.pixelCount() > most) return most;  // so that the product cannot overflow
    return static_cast<std::uint32_t>(std::min(image.pixelCount() * image.pixelBytes() + header, most));
}

}  // namespace nxTXN
