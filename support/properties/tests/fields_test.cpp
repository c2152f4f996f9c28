// The saved forms of all value types: what they occupy, and that they come back.
#include "support/properties/fields.h"

#include <cstring>

#include "support/properties/TxdProperty.h"
#include "support/properties/tests/Recorder.h"

namespace nxSupport::test {
namespace {

using nxTXN::Reader;
using nxTXN::Writer;
using urLinear::Normal;
using urLinear::Point;

/// Reads back what is written, over a value that is in the way. Plain values are saved as they lie in memory.
template <class T>
T roundTrip(T const& value, T inTheWay, std::size_t bytes, std::size_t pointers = 0) {
    Writer writer;
    write(writer, value);
    EXPECT_EQ(writer.data().size(), bytes);
    EXPECT_EQ(writer.words().size(), pointers);
    if constexpr (std::is_trivially_copyable_v<T>) {
        EXPECT_TRUE(bytes == 0 || std::memcmp(&value, writer.data().data(), bytes) == 0);
    }
    Reader reader(writer);
    read(reader, inTheWay);
    EXPECT_EQ(reader.remaining(), 0U);
    nxTXN::Clear cleared;
    T copy = inTheWay;
    nxTXN::fieldHandlers<T>.clear(cleared, &copy);
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
}

/// A module's object that refers to a property.
struct Layer : nxTXN::RefCountedObject {
    using RefCountedObject::RefCountedObject;

    ur::Reference<Property> property;
    ur::Reference<Property const> shown;

    void set(ur::Reference<Property> const& newProperty) {
        transact();
        shown = property = newProperty;
    }
    void onTransact(nxTXN::Serializer& serializer) override {
        serializer.field(property);
        serializer.field(shown);
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

TEST(Fields, APropertyThatWasDroppedUnrecordedIsAMemberAgainWhenARecordBringsItBack) {
    nxTXN::Manager manager;
    Recorder heard;
    auto const layer = ur::make<Layer>(manager);
    auto const p = Property::createTxd(manager, "p", number(1));
    PropertyReference q = p->cloneTxd(manager, "q");
    heard.follow(q);
    layer->set(q);
    edit(manager, [&] { layer->set(nullptr); });
    q.reset();
    manager.undo();
    p->setValue(number(2));
    EXPECT_EQ(heard.take(), "q:start q:perform q:end");
}

}  // namespace
}  // namespace nxSupport::test
