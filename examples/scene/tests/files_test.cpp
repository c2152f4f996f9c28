// Tests files: meshes, documents, settings, what a crash leaves, pictures.
#include <QProcess>

#include "examples/scene/meshFiles.h"
#include "examples/scene/tests/Window.h"

namespace scene {
namespace {

using nxSupport::Object;
using testing::EndsWith;
using testing::HasSubstr;

using Files = Window;

TEST_F(Files, MeshesOfThreeFormatsAreRead) {
    struct Case {
        char const* name;
        std::string text;
        unsigned vertices, triangles;
    };
    std::string stl(80, 'x');
    std::uint32_t const count = 2;
    stl.append(reinterpret_cast<char const*>(&count), 4);
    for (int i = 0; i < 2; ++i) {
        float const numbers[12] = {0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, float(i)};
        stl.append(reinterpret_cast<char const*>(numbers), sizeof numbers).append(2, '\0');
    }
    Case const cases[] = {
        {"a.obj", "# two\nv 0 0 0\nv 1 0 0\r\nv 1 1 0\nv 0 1 0\nf 1/1 2/2/2 -2//3 4\n", 4, 2},
        {"b.off", "OFF\n# comment\n3 1 0\n0 0 0\n\n1 0 0 # right\n0 1 0\n3 0 1 2\n", 3, 1},
        {"c.stl", "solid x\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1e0 0\n", 3, 1},
        {"d.STL", stl, 4, 2},
    };
    for (auto const& [name, text, vertices, triangles] : cases) {
        Mesh const mesh = readMesh(write(name, text), {});
        EXPECT_EQ(mesh->vertexCount(), vertices) << name;
        EXPECT_EQ(mesh->triangleCount(), triangles) << name;
    }
    EXPECT_EQ(readMesh(write("e.obj", cases[0].text), [](double) { return false; }), nullptr) << "cancelled";
}

TEST_F(Files, BrokenOnesAreAMessageAndChangeNothing) {
    struct Case {
        char const* name;
        std::string text;
        char const* message;
    };
    Case const cases[] = {
        {"a.obj", "v 0 0 0\nv 1 0\n", "a.obj: line 2: expected a coordinate, found \"\""},
        {"b.obj", "v 0 0 0\nf 1 2 3\n", "b.obj: line 2: a face names a vertex that does not exist"},
        {"c.obj", "v 0 0 nan\n", "c.obj: line 1: a coordinate is too large"},
        {"d.obj", "", "d.obj: has no triangles"},
        {"e.obj", "v 0 0 0\nf 1 x 1\n", "e.obj: line 2: expected the number of a vertex, found \"x\""},
        {"f.off", "OFF\n4000000000 4000000000 0\n0 0 0\n", "f.off: line 3: expected a coordinate, found \"\""},
        {"g.off", "COFF\n", "g.off: line 1: does not begin with OFF"},
        {"h.stl", std::string(90, '\xFF'), "h.stl: line 1: is no STL"},
        {"i.txt", "x", "i.txt: is neither OBJ nor OFF nor STL"},
        {"j.obj", std::string(3000000, 'v'), "j.obj: line 1: is longer than a mebibyte"},
    };
    for (auto const& [name, text, message] : cases) {
        messages.clear();
        editor.importMesh(write(name, text));
        settle();
        EXPECT_THAT(messages, testing::ElementsAre(message)) << name;
    }
    editor.importMesh(folder.filePath("missing.obj").toStdString());
    settle();
    EXPECT_THAT(messages.back(), EndsWith("missing.obj: cannot be read"));
    editor.open(write("k.json", "{\"format\": \"nxDocument\"\n,}"));
    EXPECT_THAT(messages.back(), HasSubstr("k.json: line 2: "));
    EXPECT_TRUE(editor.document().root().children().empty());
    EXPECT_TRUE(steps().empty());
    for (auto const& entry : std::filesystem::directory_iterator(models + "invalid")) {
        editor.importMesh(entry.path());
    }
    settle();
}

TEST_F(Files, DocumentsAreSavedAndOpened) {
    Object& spider = import("OBJ/spider.obj");
    editor.perform("Smooth", [&] { addStroke(spider, {{}, 20, 0.5}); });
    std::string const path = folder.filePath("desk.json").toStdString();
    EXPECT_EQ(editor.title(), "untitled*");
    ASSERT_TRUE(editor.save(path));
    settle();
    EXPECT_EQ(window.windowTitle(), "desk.json – nxscene");
    Mesh const mesh = latestMesh(editor.shapes().of(spider));
    editor.perform("Delete", [&] { editor.document().root().remove(spider); });
    settle();
    EXPECT_EQ(window.windowTitle(), "desk.json* – nxscene");
    window.openFiles({QString::fromStdString(path)});
    settle();
    Object& again = *find("spider");
    EXPECT_TRUE(std::ranges::equal(latestMesh(editor.shapes().of(again))->vertices(), mesh->vertices()));
    select({&again});
    run("Reload meshes");
    EXPECT_EQ(latestMesh(editor.shapes().of(again))->vertexCount(), mesh->vertexCount()) << "read again";
}

TEST_F(Files, SettingsLimitTheCacheWhichPagesToDisk) {
    editor.setSettings({.cacheMegabytes = 0.25});
    Editor other(queue, folder.path().toStdString());
    other.messageSignal.addCallback([this](std::string_view text) { messages.emplace_back(text); });
    other.loadSettings();
    EXPECT_EQ(other.settings().cacheMegabytes, 0.25);
    for (char const* file : {"OBJ/spider.obj", "OFF/Wuson.off", "STL/3DSMaxExport.STL"}) import(file);
    editor.perform("Detail", [&] {
        for (Object& mesh : editor.document().root().children()) mesh.set("detail", "full");
    });
    settle();
    EXPECT_GT(editor.cache().statistics().pagesOut, 0U);
    EXPECT_EQ(view().frame()->triangleCount(), 1368U + 3732 + 2000) << "what was paged out is drawn all the same";
    EXPECT_LE(editor.cache().getMemoryUsed(), 262144U);
    write("settings.json", "{\"cacheMegabytes\": \n oops}");
    other.loadSettings();
    EXPECT_THAT(messages, testing::ElementsAre(HasSubstr("settings.json: line 2: ")));
}

/// Runs the program.
struct Program : QProcess {
    explicit Program(QStringList const& arguments) {
        setProcessChannelMode(MergedChannels);
        start(NX_SCENE_PROGRAM, arguments);
    }
};

TEST_F(Files, AutosavesSurviveAKill) {
    std::string const script = write("edit.lua", "scene.root():add('Group', 'kept').position = {1, 2, 3}");
    write("settings.json", "{\"autosaveSeconds\": 0.05}");
    Program program({"--folder", folder.path(), "--run", QString::fromStdString(script)});
    QElapsedTimer limit;
    limit.start();
    while (QDir(folder.path()).entryList({"*.autosave"}, QDir::Files | QDir::Hidden).isEmpty() &&
           limit.elapsed() < 30000) {
        QTest::qWait(20);
    }
    QTest::qWait(200);
    program.kill();
    ASSERT_TRUE(program.waitForFinished());
    ASSERT_TRUE(editor.recover()) << QDir(folder.path()).entryList().join(" ").toStdString();
    EXPECT_EQ(find("kept")->get<urLinear::Point>("position"), urLinear::Point(1, 2, 3));
    EXPECT_TRUE(editor.document().isModified());
    ASSERT_TRUE(editor.save(folder.filePath("saved.json").toStdString()));
    EXPECT_FALSE(editor.recover()) << "saved, so nothing is left";
}

TEST_F(Files, PicturesAreTheSameEachTime) {
    QByteArray pictures[2];
    for (QByteArray& picture : pictures) {
        QString const file = folder.filePath("picture.png");
        QTemporaryDir const own;
        Program program({"--folder", own.path(), "--run", NX_SCENE_SCRIPTS "/sample.lua", "--picture", file});
        ASSERT_TRUE(program.waitForFinished(60000) && program.exitCode() == 0) << program.readAll().toStdString();
        QFile read(file);
        ASSERT_TRUE(read.open(QIODevice::ReadOnly));
        picture = read.readAll();
    }
    EXPECT_GT(pictures[0].size(), 10000);
    EXPECT_EQ(pictures[0], pictures[1]);
}

TEST_F(Files, TheProgramFailsWithALine) {
    std::string const bad = write("bad.lua", "scene.find('x').position = 1");
    struct Case {
        QStringList arguments;
        char const* line;
    };
    Case const cases[] = {
        {{"--folder", "/proc/none"}, "nxscene: /proc/none: "},
        {{"--folder", folder.path(), "--run", QString::fromStdString(bad)}, "nxscene: bad.lua:1: "},
        {{"--folder", folder.path(), "--run", "none.lua"}, "nxscene: none.lua: cannot be read"},
        {{"--folder", folder.path(), "--picture", "/proc/none.png"}, "nxscene: /proc/none.png: cannot be written"},
    };
    for (auto const& [arguments, line] : cases) {
        Program program(arguments);
        ASSERT_TRUE(program.waitForFinished(30000));
        EXPECT_EQ(program.exitCode(), 1);
        EXPECT_THAT(program.readAll().toStdString(), HasSubstr(line));
    }
}

}  // namespace
}  // namespace scene
