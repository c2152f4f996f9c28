// A scene on one page: named objects in an undoable list, a panel of twins, bounds in a cache, a file that is read in
// the background, and a console for scripts.
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "foundation/nxLC/State.h"
#include "foundation/nxRFL/ExposeClass.h"
#include "foundation/nxRFL/ExposeFunction.h"
#include "foundation/nxTXN/ObjectList.h"
#include "foundation/nxTXN/Transaction.h"
#include "foundation/ur/hashfunction.h"
#include "foundation/urGeom/BoundingBox.h"
#include "krcache/Manager.h"
#include "support/messaging/AsyncTask.h"
#include "support/messaging/ServiceDomain.h"
#include "support/properties/Prop.h"

using nxSupport::Prop;
using nxTXN::Transaction;
using ur::Reference;
using urLinear::AffineMatrix;
using urLinear::Point;
using urUtil::Color;
using Points = std::shared_ptr<std::vector<Point> const>;

// ---- The document: objects with a name, a matrix and a colour, in their order.
class SceneObject : public nxTXN::RefCountedObject {
public:
    SceneObject(nxTXN::Manager& manager, std::string const& called, Points mesh)
        : RefCountedObject(manager),
          points(std::move(mesh)),
          name(Prop<std::string>::createTxd(manager, "name", called)),
          matrix(Prop<AffineMatrix>::createTxd(manager, "matrix", {})),
          colour(Prop<Color>::createTxd(manager, "colour", {1, 1, 1})) {}
    std::string getName() const { return name.get(); }
    void setName(std::string const& next) { name.set(next); }
    float red() const { return colour.get().r; }
    void setRed(float red) { colour.set({red, 0, 0}); }
    void move(double x, double y, double z) {
        AffineMatrix moved = matrix.get();
        matrix.set(moved.translate({x, y, z}));
    }
    Points const points;
    Prop<std::string> name;
    Prop<AffineMatrix> matrix;
    Prop<Color> colour;
};

// ---- Bounds: computed once for a mesh and a matrix, kept under a limit.
struct Bounds : urKRCache::Resource {
    urGeom::BoundingBox box;
    unsigned onGetSizeInBytes() const override { return sizeof(Bounds); }
};

struct BoundsKey : urKRCache::KeyData {
    BoundsKey(Points mesh, AffineMatrix const& place) : points(std::move(mesh)), matrix(place) {}
    int onCompare(KeyData const* other) const override {
        auto const& their = *static_cast<BoundsKey const*>(other);
        if (points != their.points) return points < their.points ? -1 : 1;
        return std::memcmp(matrix.data(), their.matrix.data(), sizeof matrix);
    }
    unsigned onHash() const override {
        std::string_view const bytes(reinterpret_cast<char const*>(matrix.data()), sizeof matrix);
        return getTypeHash() ^ ur::hashfunction(bytes) ^ static_cast<unsigned>(std::hash<Points>()(points));
    }
    Reference<urKRCache::Resource> onCreateResource() const override {
        auto bounds = ur::make<Bounds>();
        for (Point const& point : *points) bounds->box.include(point * matrix);
        return bounds;
    }
    Points points;
    AffineMatrix matrix;
};

// ---- The application: one thread, a queue, a document with its history, a cache.
class Scene : public nxSupport::ServiceDomain {
public:
    explicit Scene(urThread::RunQueue& queue) : ServiceDomain(queue) { cache.setMemoryLimit(2 * sizeof(Bounds)); }
    SceneObject& add(std::string const& name, Points points) {
        edit(history, "Add " + name, [&] { objects.append(ur::make<SceneObject>(history, name, std::move(points))); });
        return objects[objects.size() - 1];
    }
    SceneObject* find(std::string const& name) const {
        auto const found = std::ranges::find_if(objects, [&](auto& object) { return object.name.get() == name; });
        return found == objects.end() ? nullptr : &*found;
    }
    urLinear::Range3d boundsOf(SceneObject const& object) {
        auto const shim =
            cache.getShim(ur::make<BoundsKey>(object.points, object.matrix.get()), urKRCache::Shim::Retained);
        auto const bounds = cache.accessResource(shim);
        return bounds ? static_cast<Bounds const&>(*bounds).box.range() : urLinear::Range3d();
    }
    nxTXN::Manager history;
    nxTXN::ObjectList<SceneObject> objects{history};
    urKRCache::Manager cache{std::filesystem::temp_directory_path()};
};

// ---- The panel: a twin of each property of the selected object. The twins follow edits, undo and redo.
class Panel {
public:
    explicit Panel(SceneObject const& object)
        : name_(object.name.pty()->cloneUnTxd()),
          colour_(object.colour.pty()->cloneUnTxd()),
          nameShown_(name_.subscribe([](std::string const& name, nxSupport::PropertyModType type) {
              if (type == nxSupport::ModifyPerform) std::printf("  panel: name %s\n", name.c_str());
          })),
          colourShown_(colour_.subscribe([](Color const& colour, nxSupport::PropertyModType type) {
              if (type == nxSupport::ModifyPerform) std::printf("  panel: red %g\n", colour.r);
          })) {}

private:
    Prop<std::string> name_;
    Prop<Color> colour_;
    urRTB::ScopedConnection nameShown_, colourShown_;
};

// ---- The task: reads the vertices of an OBJ file, reports its progress, and ends early on request.
class ObjReader : public nxSupport::AsyncTask {
public:
    ObjReader(Scene& scene, std::string path) : AsyncTask(scene), scene_(scene), path_(std::move(path)) {}

private:
    void execute() override {
        std::ifstream file(path_);
        if (!file) throw std::runtime_error("cannot open " + path_);
        auto const size = static_cast<double>(std::filesystem::file_size(path_));
        double read = 0;
        for (std::string line; !isCancelled() && std::getline(file, line);) {
            read += static_cast<double>(line.size() + 1);
            std::istringstream words(line);
            std::string kind;
            Point point;
            if (words >> kind && kind == "v" && words >> point.x >> point.y >> point.z) points_.push_back(point);
            setProgress(read / size, "reading");
        }
    }
    void onComplete(bool) override {
        if (isCancelled()) return;
        scene_.add(std::filesystem::path(path_).stem().string(),
                   std::make_shared<std::vector<Point> const>(std::move(points_)));
    }
    void onFailed(std::string_view text) override {
        std::printf("  %.*s\n", static_cast<int>(text.size()), text.data());
    }
    Scene& scene_;
    std::string path_;
    std::vector<Point> points_;  // used by the worker until the completion
};

// ---- The console: the classes and functions that scripts use.
class Console {
public:
    explicit Console(Scene& scene) {
        nxRFL::ExposeClass<SceneObject>(database_, "scene::Object")
            .addProperty("name", &SceneObject::getName, &SceneObject::setName)
            .addProperty(
                "red", [](SceneObject& object) { return object.colour.get().r; },
                [](SceneObject& object, float red) {
                    object.colour.set({red, 0, 0});
                })
            .addMethod("move", &SceneObject::move, {"x", {"y", 0.0}, {"z", 0.0}});
        nxRFL::ExposeFunction(database_, "scene")
            .add("find", [&scene](std::string const& name) { return Reference<SceneObject>(scene.find(name)); })
            .add("count", [&scene] { return scene.objects.size(); })
            .add("print", [](std::string const& text) { std::printf("  %s\n", text.c_str()); });
        state_ = std::make_unique<nxLC::State>(database_, nxLC::Library::sandboxed);
        state_->setLimits({.instructions = 1'000'000, .memory = 16'000'000});
    }
    /// Runs a line as one step of the history; a failing line leaves no step.
    void run(Scene& scene, std::string const& line) {
        std::printf("> %s\n", line.c_str());
        Transaction transaction(scene.history, line);
        auto const error = state_->run(line, "=console");
        if (error) return static_cast<void>(std::printf("  %s\n", error->what()));
        transaction.commit();
    }

private:
    nxRFL::Database database_;
    std::unique_ptr<nxLC::State> state_;
};

int main() {
    auto const folder = std::filesystem::temp_directory_path() / ("scene" + std::to_string(::getpid()));
    std::filesystem::create_directory(folder);
    std::ofstream(folder / "wedge.obj") << "# a wedge\nv 0 0 0\nv 2 0 0\nv 2 1 0\nv 0 0 3\nf 1 2 3 4\n";
    urThread::RunQueue queue;
    Scene scene(queue);
    scene.objects.insertedSignal().addCallback([](std::size_t at, SceneObject& object) {
        std::printf("  outliner: %s at %zu\n", object.name.get().c_str(), at);
    });
    scene.objects.erasedSignal().addCallback(
        [](std::size_t at, SceneObject&) { std::printf("  outliner: -%zu\n", at); });

    std::puts("--- reading files");
    auto const finish = [&](Reference<ObjReader> const& reader) {
        reader->startThread();
        reader->wait();
        queue.service();
    };
    auto const wedge = ur::make<ObjReader>(scene, (folder / "wedge.obj").string());
    wedge->progressSignal().addCallback([](double done, std::string_view) { std::printf("  %g %%\n", 100 * done); });
    finish(wedge);
    auto const cancelled = ur::make<ObjReader>(scene, (folder / "wedge.obj").string());
    cancelled->cancel();
    finish(cancelled);
    std::filesystem::remove_all(folder);

    std::puts("--- bounds");
    scene.add("ball", std::make_shared<std::vector<Point> const>(std::vector<Point>{{-1, -1, -1}, {1, 1, 1}}));
    for (SceneObject const& object : scene.objects) {
        Point const& corner = scene.boundsOf(object).max;
        std::printf("  %s up to %g %g %g\n", object.name.get().c_str(), corner.x, corner.y, corner.z);
    }
    static_cast<void>(scene.boundsOf(scene.objects[0]));
    std::printf("  %zu hits, %zu builds\n", scene.cache.statistics().hits, scene.cache.statistics().builds);

    std::puts("--- console");
    Console console(scene);
    scene.history.begin("Select", nxTXN::TransactionKind::none);  // not a step to undo
    Panel const panel(scene.objects[0]);
    scene.history.commit();
    console.run(scene, "local w = scene.find('wedge') w.name = 'ramp' w:move(5) w.red = 0.5");
    console.run(scene, "scene.find('ramp').red = 0.25 scene.find('ramp').colr = 1");
    console.run(scene, "scene.print(scene.find('ramp').name .. ' of ' .. scene.count())");
    std::printf("  ramp up to %g\n", scene.boundsOf(scene.objects[0]).max.x);

    std::puts("--- undo");
    while (scene.history.undo()) std::printf("  undone: %s\n", scene.history.redoName().c_str());
    while (scene.history.redo()) std::printf("  done again: %s\n", scene.history.undoName().c_str());
    return 0;
}
