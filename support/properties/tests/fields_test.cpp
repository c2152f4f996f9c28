// The saved forms of all value types: what they occupy, and that they come back.
#include "support/properties/fields.h"

#include <cstring>
#include <limits>

#include "support/properties/TxdProperty.h"
#include "support/properties/tests/Recorder.h"

namespace nxSupport::test {
namespace {

using nxTXN::Reader;
using nxTXN::Writer;
using urLinear::Normal;
using urLinear::Point;

/// Reads back what is written, over a value that is in the way.
template <class T>
T roundTrip(T const& value, T inTheWay, std::size_t bytes, std::size_t pointers = 0) {
    nxTXN::FieldHandlers const& handlers = nxTXN::fieldHandlers<T>;
    Writer writer;
    handlers.write(writer, &value);
    EXPECT_EQ(writer.data().size(), bytes);
    EXPECT_EQ(writer.words().size(), pointers);
    Reader reader(writer);
    handlers.read(reader, &inTheWay);
    EXPECT_EQ(reader.remaining(), 0U);
    nxTXN::Clear cleared;
    T copy = inTheWay;
    handlers.clear(cleared, &copy);
    return inTheWay;
}

template <class T>
void expectRow(char const* name, std::size_t bytes, T const& value, T const& inTheWay = T()) {
    EXPECT_TRUE(roundTrip(value, inTheWay, bytes) == value) << name;
}

TEST(Fields, KeepTheirSizeAndComeBack) {
    urLinear::AffineMatrix matrix;
    matrix.scale(3);
    urGeom::BoundingBox box;
    box.include(Point(1, 2, 3));
    Point const a(1, 2, 3);
    Point const b(-4, 5, 0.1);
    Normal const n(0.6, 0, 0.8);
    expectRow("AffineMatrix", 96, matrix);
    expectRow("Point", 24, a);
    expectRow("Vector", 24, urLinear::Vector(1, 2, 3));
    expectRow("BoundingBox", 24, box);
    expectRow("Point2", 16, urLinear::Point2(1, 2));
    expectRow("Color", 16, urUtil::Color(0.1F, 0.2F, 0.3F, 0.4F));
    expectRow("Point2Flt", 8, urLinear::Point2Flt(1, 2));
    expectRow("PointFlt", 12, urLinear::PointFlt(1, 2, 3));
    expectRow("Uuid", 16, urOS::Uuid(1, 2, 3, 4));
    expectRow("MeshCoord", 28, urGeom::MeshCoord{{0.2, 0.3, 0.5}, 7});
    expectRow("Normal", 24, n);
    expectRow("Line", 48, urLinear::Line(a, n));
    expectRow("Plane", 48, urLinear::Plane(b, n));
    expectRow("Range3d", 48, urLinear::Range3d(b, a));
    expectRow("ParamLine", 48, urLinear::ParamLine(a, b));
    expectRow("ParamPlane", 96, urLinear::ParamPlane(a, n, b, Point(9, 8, 7)));
    expectRow("Quaternion", 32, urLinear::Quaternion(1, 2, 3, 4));
    expectRow("OrientedBox", 120, urGeom::OrientedBox{a, {n, Normal(0, 1, 0), Normal(1, 0, 0)}, {1, 2, 3}});
    expectRow<urString::CString>("CString", 7, "abc", "longer than the other text");
    expectRow<urString::CString>("empty CString", 4, "", "in the way");
    expectRow("CString with a NUL", 7, urString::CString(std::string("a\0b", 3)));
    expectRow<urString::IString>("IString", 4 + 7, {"gr\xC3\xBC\xC3\x9F", urString::Encoding::utf8});
    expectRow<urString::IString>("empty IString", 4 + 1, {}, "in the way");
    expectRow("bool", 1, true);
    expectRow("double", 8, 0.1);
}

TEST(Fields, LieInTheOrderOfTheirComponents) {
    Writer writer;
    write(writer, urLinear::Quaternion(1, 2, 3, 4));
    write(writer, urGeom::OrientedBox{Point(5, 6, 7), {}, {8, 9, 10}});
    write(writer, urLinear::ParamPlane({}, {}, Point(11, 12, 13), Point(14, 15, 16)));
    double numbers[31];
    ASSERT_EQ(writer.data().size(), sizeof numbers);
    std::memcpy(numbers, writer.data().data(), sizeof numbers);
    EXPECT_THAT(std::vector(numbers, numbers + 7), testing::ElementsAre(1, 2, 3, 4, 5, 6, 7));
    EXPECT_THAT(std::vector(numbers + 16, numbers + 19), testing::ElementsAre(8, 9, 10));
    EXPECT_THAT(std::vector(numbers + 25, numbers + 31), testing::ElementsAre(11, 12, 13, 14, 15, 16));
}

TEST(Fields, NormalsAreReadThroughTheirOwnRule) {
    Writer writer;
    for (double const component : {0.0, 3.0, 4.0}) write(writer, component);
    Reader reader(writer);
    Normal normal;
    read(reader, normal);
    EXPECT_EQ(normal, Normal(0, 0.6, 0.8));
}

TEST(Fields, HandlesAndIdentitiesAreKeptAsPointers) {
    auto compact = ur::make<urGeom::CompactMesh>();
    for (double const x : {0.0, 1.0}) compact->addVertex({x, 0, 0});
    compact->addVertex({0, 1, 0});
    compact->addTriangle({0, 1, 2});
    auto const mesh = urGeom::TopoMesh::build(*compact);
    EXPECT_EQ(roundTrip(mesh->vertex(1), {}, 0, 1), mesh->vertex(1));
    EXPECT_EQ(roundTrip(mesh->edge(2), {}, 0, 1), mesh->edge(2));
    EXPECT_EQ(roundTrip(mesh->face(0), {}, 0, 1), mesh->face(0));
    urGeom::TopoMeshEntity const entity(mesh->face(0));
    EXPECT_EQ(roundTrip(entity, {}, 4, 1), entity);
    EXPECT_EQ(roundTrip(ur::TypeInfo::of<int>(), {}, 0, 1), ur::TypeInfo::of<int>());
}

TEST(Fields, SizesAreWhatTheObjectsSay) {
    urGeom::CompactMesh mesh;
    mesh.addVertex({});
    EXPECT_EQ(nxTXN::getSize(mesh), mesh.numBytes());
    EXPECT_EQ(nxTXN::getSize(urGeom::MeshAdjTris(mesh)), urGeom::MeshAdjTris(mesh).numBytesUsed());
    EXPECT_EQ(nxTXN::getSize(urGeom::MeshAdjVertices(mesh)), urGeom::MeshAdjVertices(mesh).numBytesUsed());
    EXPECT_EQ(nxTXN::getSize(urGeom::MeshSubset(100)), urGeom::MeshSubset(100).numBytesUsed());
    EXPECT_EQ(nxTXN::getSize(urImage::PixelImage(10, 20, urImage::PixelFormat::rgb8)), 10 * 20 * 3 + 32U);

    struct Vast : urImage::Image {
        Vast() : Image(0x10000, 0x10000) {}
        unsigned pixelBytes() const noexcept override { return 16; }
        urUtil::Color pixel(std::uint32_t /*x*/, std::uint32_t /*y*/) const override { return {}; }
        void setPixel(std::uint32_t /*x*/, std::uint32_t /*y*/, urUtil::Color const& /*color*/) override {}
    };
    EXPECT_EQ(nxTXN::getSize(Vast()), std::numeric_limits<std::uint32_t>::max());
}

/// A module's object that refers to a property.
class Layer : public nxTXN::RefCountedObject {
public:
    using RefCountedObject::RefCountedObject;

    ur::Reference<Property> property;
    ur::Reference<Property const> shown;

    void set(ur::Reference<Property> const& newProperty) {
        transact();
        property = newProperty;
        shown = newProperty;
    }

protected:
    void onTransact(nxTXN::Serializer& serializer) override {
        serializer.beginObject(this, nullptr);
        RefCountedObject::onTransact(serializer);
        serializer.field(property);
        serializer.field(shown);
        serializer.endObject(this);
    }
};

TEST(Fields, PropertiesLiveInTheRecordsThatReferToThem) {
    nxTXN::Manager manager;
    auto const layer = ur::make<Layer>(manager);
    for (bool const transacted : {true, false}) {
        PropertyReference property =
            transacted ? Property::createTxd(manager, "p", number(1)) : Property::createUnTxd("p", number(1));
        Property const* const address = property.get();
        layer->set(std::exchange(property, nullptr));
        edit(manager, [&] { layer->set(nullptr); });
        manager.undo();
        EXPECT_TRUE(layer->property == address && layer->shown == address);
        EXPECT_EQ(numberOf(*layer->property), 1);
        auto const* const object = dynamic_cast<TxdProperty const*>(address);
        EXPECT_TRUE(!object || object->isTxnExtant());
        manager.redo();
        manager.clear();
        EXPECT_FALSE(layer->property || layer->shown);
    }
}

}  // namespace
}  // namespace nxSupport::test
