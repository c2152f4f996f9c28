// Tests saving and opening: both forms, other versions, faults.
#include <cmath>

#include "foundation/urOS/tests/FileTest.h"
#include "support/documents/tests/Scene.h"

namespace nxSupport::test {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr char const a[] = "aaaaaaaa-0000-4000-8000-000000000001";
constexpr char const b[] = "bbbbbbbb-0000-4000-8000-000000000002";

struct DocumentFiles : urOS::Files {
    Scene scene;

    std::string fault(std::string const& name, OpenProgress const& progress = {}) {
        std::string const before = scene.text();
        std::string text(open(scene.document, wide(path(name.c_str())), progress).message());
        EXPECT_TRUE(text.empty() || scene.text() == before) << text;
        return text;
    }
    /// A file with one group, and `object` in it.
    std::string faultOf(std::string const& object, std::string const& classes = "{}") {
        put(path("bad.json"), "{\"format\": \"nxDocument\", \"version\": 1, \"classes\": " + classes +
                                  ",\n\"objects\": [{\"class\": \"Group\", \"id\": \"" + a + "\", \"children\": [\n" +
                                  object + "\n]}]}");
        std::string text = fault("bad.json");
        EXPECT_THAT(text, text.empty() ? StartsWith("") : StartsWith(path("bad.json") + ": "));
        return text.empty() ? text : text.substr(path("bad.json").size() + 2);
    }
};

TEST_F(DocumentFiles, GiveBackWhatWasSavedInBothForms) {
    Object& group = scene.add(scene.root(), "Group", "g\xC3\xBC");
    Object& ball = scene.add(group, "Ball", "b");
    scene.document.edit("Set", [&] {
        ball.set("size", 0.1), ball.set("place", urLinear::Point(1, 2, 3)), ball.setTarget("next", &ball);
        ball.set("free", std::vector<bool>{true}[0]);
    });
    for (char const* name : {"scene.json", "scene.nx"}) {
        scene.document.edit("Modify", [&] { ball.set("size", ball.get<double>("size") + 1); });
        EXPECT_TRUE(scene.document.isModified());
        ASSERT_TRUE(save(scene.document, wide(path(name))).ok());
        EXPECT_FALSE(scene.document.isModified());
        Scene other;
        auto const former = ur::Reference<Object>(&other.add(other.root(), "Ball", "former"));
        int replaced = 0;
        other.document.replacedSignal().addCallback([&] { ++replaced; });
        ASSERT_TRUE(open(other.document, wide(path(name))).ok());
        EXPECT_EQ(other.text(), scene.text());
        EXPECT_TRUE(replaced == 1 && !other.document.isModified() && other.document.steps().empty());
        EXPECT_TRUE(former->document() == nullptr && !former->set("size", 2));
        audit(other.document);
        Object& again = *other.document.find("g\xC3\xBC/b");
        other.document.edit("Go on", [&] { EXPECT_TRUE(again.moveTo(other.root(), 0)); });
        EXPECT_TRUE(other.document.undo() && again.target("next") == &again);
        EXPECT_EQ(other.text(), scene.text());
    }
    EXPECT_THAT(textOf(path("scene.json")), StartsWith("{\n  \"classes\""));
    EXPECT_THAT(textOf(path("scene.nx")), StartsWith("\x89NXPK"));
    EXPECT_EQ(fileCount(), 2U);
}

TEST_F(DocumentFiles, KeepWhatTheProgramDoesNotKnow) {
    std::string const file =
        std::string(
            "{\"classes\":{\"Ball\":1,\"Group\":1,\"Node\":1,\"Shape\":3,\"Star\":4},"
            "\"format\":\"nxDocument\",\"objects\":[{\"children\":[{\"class\":\"Star\","
            "\"children\":[{\"class\":\"Ball\",\"id\":\"") +
        b + "\",\"values\":{\"colour\":[1,2],\"size\":\"large\"}}],\"id\":\"" +
        "cccccccc-0000-4000-8000-000000000003\",\"values\":{\"rays\":5}}],\"class\":\"Group\",\"id\":\"" + a +
        "\"}],\"version\":1}";
    put(path("new.json"), file);
    ASSERT_EQ(fault("new.json"), "");
    Object& star = scene.root().children()[0];
    EXPECT_TRUE(!star.objectClass().isKnown() && star.get<int>("rays") == 5);
    Object& ball = star.children()[0];
    EXPECT_TRUE(ball.objectClass().isKnown() && !ball.objectClass().isCurrent());
    EXPECT_EQ(ball.get<double>("size", 5), 5) << "its value has another shape";
    scene.document.edit("Work on", [&] {
        EXPECT_TRUE(star.moveTo(scene.root(), 0) && scene.root().append(scene.document.make("Ball")));
    });
    ASSERT_TRUE(save(scene.document, wide(path("saved.json"))).ok());
    Scene again;
    ASSERT_TRUE(open(again.document, wide(path("saved.json"))).ok());
    EXPECT_EQ(again.text(), scene.text());
    auto const versions = again.root().children()[0].children()[0].objectClass().versions();
    EXPECT_EQ(versions.find("Shape")->second, 3U) << "of the content that was kept";
    EXPECT_TRUE(again.root().children()[1].objectClass().isCurrent()) << "made by this program";
}

TEST_F(DocumentFiles, OfEarlierVersionsAreBroughtUp) {
    std::string const ball = std::string("{\"class\": \"Ball\", \"id\": \"") + b + "\", \"values\": {\"width\": ";
    EXPECT_EQ(faultOf(ball + "3}}", "{\"Ball\": 1, \"Shape\": 1}"), "");
    EXPECT_EQ(scene.root().children()[0].get<double>("size"), 3);
    EXPECT_FALSE(scene.root().children()[0].value("width"));
    EXPECT_EQ(faultOf(ball + "3}}", "{\"Shape\": 2}"), "");
    EXPECT_TRUE(scene.root().children()[0].value("width")) << "a free name";
    EXPECT_EQ(faultOf(ball + "-3}}", "{\"Shape\": 1}"),
              "line 3: object \"/[0]\" cannot be brought to the present version: the width is below 0");
    EXPECT_EQ(faultOf(ball + "300}}", "{\"Shape\": 1}"), "line 3: object \"/[0]\", property \"size\": is above 100");
}

TEST_F(DocumentFiles, NameWhatIsWrongAndWhere) {
    std::string const id = std::string("\"id\": \"") + b + "\"";
    struct Case {
        std::string object;
        char const* fault;
    };
    Case const cases[] = {
        {"7", "line 2: object \"/[0]\" is no dictionary"},
        {"{" + id + "}", "line 2: object \"/[0]\" has no class"},
        {"{\n\"class\": \"Ball\"}", "object \"/[0]\" has no identity"},
        {"{\"class\": \"Ball\",\n\"id\": \"1\"}", "line 4: object \"/[0]\" has no identity"},
        {std::string("{\"class\": \"Ball\", \"id\": \"") + a + "\"}", "has the identity of another object"},
        {"{\"class\": \"Ball\", " + id + ", \"child\": 1}", "has the unknown member \"child\""},
        {"{\"class\": \"Ball\", " + id + ",\n\"values\": 1}",
         "line 4: object \"/[0]\" has values that are no dictionary"},
        {"{\"class\": \"Ball\", " + id + ", \"values\": {\"name\": \"x\",\n\n\"size\": 101}}",
         "line 5: object \"/x\", property \"size\": is above 100"},
        {"{\"class\": \"Ball\", " + id + ", \"children\": [{\"class\": \"Ball\"}]}",
         "is a Ball, which a Ball may not contain"},
        {"{\"class\": \"Ball\", " + id + ", \"versions\": {\"Ball\": 0.5}}", "has versions that are no whole numbers"},
    };
    for (auto const& [object, expected] : cases) EXPECT_THAT(faultOf(object), HasSubstr(expected)) << object;
    put(path("syntax.json"), "{\n\"format\": nxDocument}");
    put(path("other.json"), "{\"scene\": 1}");
    put(path("newer.json"), "{\"format\": \"nxDocument\",\n\"version\": 2}");
    put(path("empty.json"), "");
    EXPECT_THAT(fault("syntax.json"), HasSubstr("syntax.json: line 2: "));
    EXPECT_THAT(fault("other.json"), HasSubstr("has the unknown member \"scene\""));
    EXPECT_THAT(fault("newer.json"), HasSubstr("line 2: is of a newer version of the format"));
    EXPECT_THAT(fault("empty.json"), HasSubstr("line 1: "));
    EXPECT_THAT(fault("missing.json"), HasSubstr("missing.json"));
    Document ball(scene, "Ball");
    EXPECT_TRUE(save(ball, wide(path("ball.nx"))).ok());
    EXPECT_THAT(fault("ball.nx"), AllOf(HasSubstr("ball.nx: byte "), EndsWith("is a Ball, expected a Group")));
    std::string const packets = textOf(path("ball.nx"));
    for (std::size_t size = 8; size < packets.size(); size += 7) {
        put(path("torn.nx"), packets.substr(0, size));
        EXPECT_THAT(fault("torn.nx"), AllOf(HasSubstr("torn.nx: byte "), EndsWith(": is damaged")));
    }
    scene.document.history().begin();
    EXPECT_THAT(fault("ball.nx"), HasSubstr("while a transaction is open"));
    EXPECT_THAT(std::string(save(scene.document, wide(path("open.nx"))).message()),
                HasSubstr("while a transaction is open"));
}

TEST_F(DocumentFiles, NeedNoMoreMemoryThanTheyShould) {
    std::string classes = "{\"c0\": 1";
    std::string objects;
    for (int i = 1; i < 2000; ++i) {
        std::string const name = "\"c" + std::to_string(i) + "\"";
        classes += ", " + name + ": 1";
        urOS::Uuid const id(9, 0, 0, static_cast<std::uint32_t>(i));
        objects +=
            std::string(i > 1 ? "," : "") + "{\"class\": " + name + ", \"id\": \"" + std::string(id.asString()) + "\"}";
    }
    EXPECT_THAT(faultOf(objects, classes + "}"), HasSubstr("is one of too many versions of classes"))
        << "each class would hold the versions of all";
    EXPECT_EQ(faultOf(objects), "");
}

TEST_F(DocumentFiles, NeverLoseValuesThatJsonCannotHold) {
    scene.add(scene.add(scene.root(), "Group", "g"), "Ball", "b");
    auto const saved = [&](char const* name) { return std::string(save(scene.document, wide(path(name))).message()); };
    auto const set = [&](auto const& value) {
        scene.document.edit("Set", [&] { EXPECT_TRUE(scene.document.find("g/b")->set("free", value)); });
    };
    auto const refusesToSave = [&](auto const& value) {
        set(value);
        EXPECT_THAT(saved("a.json"), HasSubstr("object \"/g/b\", property \"free\": has a null or a number"));
        EXPECT_FALSE(std::filesystem::exists(path("a.json")));
        EXPECT_EQ(saved("a.nx"), "");
        EXPECT_EQ(fault("a.nx"), "");
    };
    refusesToSave(std::vector<double>{1, std::nan("")});
    refusesToSave(std::vector<std::optional<double>>{1, std::nullopt, 3});
    refusesToSave(std::map<std::string, std::optional<int>>{{"a", 1}, {"b", std::nullopt}});
    for (double const large : {0x1p53, 0x1p60, 1e18, -0x1p63, 1e19, 1e300}) {
        set(large);
        EXPECT_EQ(saved("large.json"), "");
        EXPECT_EQ(fault("large.json"), "") << large;
    }
    std::string const values = std::string("{\"class\": \"Ball\", \"id\": \"") + b + "\", \"values\": {\"free\":\n";
    std::string const place = ".objects[0].children[0].values.free";
    EXPECT_EQ(faultOf(values + "[1, null]}}"), "line 4: null has no item at " + place + "[1]");
    EXPECT_EQ(faultOf(values + "9007199254740993}}"), "line 4: rounded integer at " + place);
    EXPECT_EQ(faultOf(values + "1,\n\"free\": 2}}"), "line 3: repeated key at " + place);
}

TEST_F(DocumentFiles, MayHoldVeryDeepTrees) {
    constexpr std::size_t depth = 12000;
    scene.document.edit("Deep", [&] {
        Object* top = &scene.root();
        for (std::size_t i = 0; i < depth; ++i) {
            auto const below = scene.document.make("Group");
            top->append(below);
            top = below.get();
        }
    });
    for (char const* name : {"deep.json", "deep.nx"}) {
        auto const error = save(scene.document, wide(path(name)));
        ASSERT_TRUE(error.ok()) << error.message();
        std::vector<double> all;
        auto const watch = [&](double done) { return all.push_back(done), true; };
        auto const fault = open(scene.document, wide(path(name)), watch);
        ASSERT_TRUE(fault.ok()) << fault.message();
        EXPECT_EQ(scene.document.objectCount(), depth + 1);
        EXPECT_TRUE(std::ranges::is_sorted(all) && all.front() >= 0 && all.back() <= 1);
    }
}

TEST_F(DocumentFiles, ReportTheirProgressAndCanBeCancelled) {
    scene.document.edit("Many", [&] {
        for (int i = 0; i < 5000; ++i) scene.root().append(scene.document.make("Ball"));
    });
    for (char const* name : {"a.json", "a.nx"}) {
        ASSERT_TRUE(save(scene.document, wide(path(name))).ok());
        std::vector<double> all;
        EXPECT_EQ(fault(name, [&](double done) { return all.push_back(done), true; }), "");
        EXPECT_TRUE(std::ranges::is_sorted(all) && all.size() > 4 && all.front() >= 0 && all.back() <= 1);
        for (double const end : {0.0, 0.6}) {
            EXPECT_THAT(fault(name, [&](double done) { return done < end; }), EndsWith("was cancelled"));
        }
    }
}

}  // namespace
}  // namespace nxSupport::test
