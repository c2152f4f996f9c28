// The saved forms of all value types: their sizes, and reading them back.
#include "support/properties/fields.h"

#include <cstring>
#include <filesystem>

#include "foundation/ur/tests/Chair.h"
#include "support/properties/TxdProperty.h"
#include "support/properties/tests/Recorder.h"

namespace nxSupport::test {

namespace {

using nxTXN::Reader;
using nxTXN::Writer;
using ur::test::Chair;
using ur::test::Wood;
using urLinear::Normal;
using urLinear::Point;

/// Checks that each value is saved in that many bytes and pointers and is read back over another value. Plain values
/// must be saved as their bytes in memory.
template <class... Values>
void expectKept(std::size_t bytes, std::size_t pointers, Values const&... values) {
    auto const expectOne = [=]<class T>(T const& value) {
        SCOPED_TRACE(typeid(T).name());
        Writer writer;
        write(writer, value);
        EXPECT_EQ(writer.data().size(), bytes);
        EXPECT_EQ(writer.words().size(), pointers);
        if constexpr (std::is_trivially_copyable_v<T>) {
            EXPECT_TRUE(bytes == 0 || std::memcmp(&value, writer.data().data(), bytes) == 0);
        }
        T copy{};
        if constexpr (std::is_assignable_v<T&, char const*>) copy = "longer than the other texts";
        Reader reader(writer);
        read(reader, copy);
        EXPECT_EQ(reader.remaining(), 0U);
        nxTXN::Clear cleared;
        nxTXN::fieldHandlers<T>.clear(cleared, &copy);
        EXPECT_TRUE(copy == value);
    };
    (expectOne(values), ...);
}

TEST(Fields, KeepTheirSizeAndComeBack) {
    urGeom::BoundingBox box;
    box.include(Point(1, 2, 3));
    Point const a(1, 2, 3), b(-4, 5, 0.1);
    Normal const n(0.6, 0, 0.8);
    expectKept(8, 0, urLinear::Point2Flt(1, 2));
    expectKept(12, 0, urLinear::PointFlt(1, 2, 3));
    expectKept(16, 0, urLinear::Point2(1, 2), urUtil::Color(0.1F, 0.2F, 0.3F, 0.4F), urOS::Uuid(1, 2, 3, 4));
    expectKept(24, 0, a, urLinear::Vector(1, 2, 3), box, n);
    expectKept(28, 0, urGeom::MeshCoord{{0.2, 0.3, 0.5}, 7});
    expectKept(32, 0, urLinear::Quaternion(1, 2, 3, 4));
    expectKept(48, 0, urLinear::Line(a, n), urLinear::Plane(b, n), urLinear::Range3d(b, a), urLinear::ParamLine(a, b));
    expectKept(96, 0, urLinear::AffineMatrix(3.0), urLinear::ParamPlane(a, n, b, Point(9, 8, 7)));
    expectKept(120, 0, urGeom::OrientedBox{a, {n, Normal(0, 1, 0), Normal(1, 0, 0)}, {1, 2, 3}});
    expectKept(4, 0, urString::CString());
    expectKept(7, 0, urString::CString("abc"), urString::CString("a\0b", 3));
    expectKept(4 + 3 * 8, 0, std::vector{1.0, 2.0, 3.0});
    expectKept(4 + 2, 0, std::vector{true, false});
    expectKept(4 + 2 * (4 + 2), 0, std::vector<std::string>{"ab", {'a', '\0'}});
    expectKept(4 + 4 + 8, 0, std::vector<std::vector<int>>{{1, 2}});
    expectKept(4 + 4 + 1 + 4 + 4, 0, Chair{"", Wood::ash, {}, {1}});
    expectKept(4 + 2 + 4 + 1 + 8 + 4, 0, Chair{"ab", Wood::oak, 0.5, {}});
    expectKept(4 + 6 * sizeof(std::filesystem::path::value_type), 0, std::filesystem::path("/\xFF/a/b"));
    expectKept(4 + 1, 0, urString::IString());
    expectKept(4 + 7, 0, urString::IString("gr\xC3\xBC\xC3\x9F", urString::Encoding::utf8));
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
    expectKept(0, 1, mesh->vertex(1), mesh->edge(2), mesh->face(0), ur::TypeInfo::of<int>());
    expectKept(4, 1, urGeom::TopoMeshEntity(mesh->face(0)));
}

TEST(Fields, ImagesCountTheirPixels) {
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
        layer->set(transacted ? Property::createTxd(manager, "p", number(1)) : Property::createUnTxd("p", number(1)));
        Property const* const address = layer->property.get();
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
    Recorder events;
    auto const layer = ur::make<Layer>(manager);
    auto const p = Property::createTxd(manager, "p", number(1));
    PropertyReference q = p->cloneTxd(manager, "q");
    events.follow(q);
    layer->set(q);
    edit(manager, [&] { layer->set(nullptr); });
    q.reset();
    manager.undo();
    p->setValue(number(2));
    EXPECT_EQ(events.take(), "q:start q:perform q:end");
}

}  // namespace
}  // namespace nxSupport::test
