// Documents beside plain structures: objects of five values each, built, saved, opened, copied, and deleted with undo.
#include <malloc.h>
#include <rapidjson/document.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <vector>

#include "bench/rows.h"
#include "foundation/urOS/AtomicFile.h"
#include "support/documents/documents.h"

namespace bench {
namespace {

using nxSupport::Document;
using nxSupport::Object;

void require(bool holds, char const* what) {
    if (!holds) throw std::runtime_error(what);
}

/// A file that is gone with its last user.
class TemporaryFile {
public:
    explicit TemporaryFile(char const* name)
        : path_(std::filesystem::temp_directory_path() / (std::to_string(::getpid()) + name)) {}
    TemporaryFile(TemporaryFile const&) = delete;
    TemporaryFile& operator=(TemporaryFile const&) = delete;
    ~TemporaryFile() { std::filesystem::remove(path_); }
    [[nodiscard]] char const* path() const noexcept { return path_.c_str(); }

private:
    std::string const path_;
};

std::string nameOf(int i) { return std::to_string(i); }
std::string tagOf(int i) { return "t" + std::to_string(i % 10); }

struct Catalog : nxSupport::ObjectCatalog {
    Catalog() {
        bool const isDescribed = add({.name = "Ball",
                                      .properties = {{.name = "name", .value = ""},
                                                     {.name = "size", .value = 1, .minimum = 0},
                                                     {.name = "x", .value = 0},
                                                     {.name = "fill", .value = "solid"},
                                                     {.name = "tag", .value = ""}}})
                                     .ok() &&
                                 add({.name = "Scene", .children = {"Ball", "Scene"}}).ok();
        require(isDescribed, "a description is wrong");
    }
};

/// The scene as a document.
class OurScene {
public:
    void build(int objects) {
        document_.edit("Build", [&] {
            for (int i = 0; i < objects; ++i) {
                auto const ball = document_.make("Ball");
                ball->set("name", nameOf(i));
                ball->set("size", i + 0.5);
                ball->set("x", i * 2.0);
                ball->set("fill", "none");
                ball->set("tag", tagOf(i));
                document_.root().append(ball);
            }
        });
    }
    /// Groups of four balls each, with the default values.
    void buildGroups(int objects) {
        document_.edit("Build", [&] {
            for (int i = 0; i < objects / 5; ++i) {
                auto const group = document_.make("Scene");
                for (int ball = 0; ball < 4; ++ball) group->append(document_.make("Ball"));
                document_.root().append(group);
            }
        });
    }
    void save(char const* path) { require(nxSupport::save(document_, path).ok(), "cannot save"); }
    void open(char const* path) { require(nxSupport::open(document_, path).ok(), "cannot open"); }
    void copyAll() {
        auto const copied = nxSupport::copy(all());
        require(nxSupport::paste(document_.root(), 0, copied).ok(), "cannot paste");
    }
    void removeAll() {
        document_.edit("Delete", [&] {
            for (Object* const object : all()) document_.root().remove(*object);
        });
    }
    void undo() { require(document_.undo(), "cannot undo"); }
    void forgetHistory() { document_.history().clear(); }
    void set(int i) {
        Object& ball = document_.root().children()[0];
        document_.edit("Set", [&] { ball.set("size", i); });
    }

private:
    std::vector<Object*> all() {
        std::vector<Object*> objects;
        for (Object& ball : document_.root().children()) objects.push_back(&ball);
        return objects;
    }

    Catalog catalog_;
    Document document_{catalog_, "Scene"};
};

/// The same by hand: structures that are found by identity while they are in the scene, and a command for undo.
class PlainScene {
public:
    void build(int objects) {
        for (int i = 0; i < objects; ++i) {
            auto ball = std::make_unique<Ball>();
            ball->id.generate();
            ball->name = nameOf(i);
            ball->size = i + 0.5;
            ball->x = i * 2.0;
            ball->fill = "none";
            ball->tag = tagOf(i);
            insert(std::move(ball));
        }
    }
    void save(char const* path) {
        rapidjson::StringBuffer text;
        rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(text);
        writer.SetIndent(' ', 2);
        writer.StartObject();
        writer.Key("objects");
        writer.StartArray();
        for (auto const& ball : balls_) write(writer, *ball);
        writer.EndArray();
        writer.EndObject();
        urOS::AtomicFile file;
        bool const isSaved =
            file.open(path).ok() && file.write(text.GetString(), text.GetSize()).ok() && file.commit().ok();
        require(isSaved, "cannot save");
    }
    void open(char const* path) {
        std::stringstream text;
        text << std::ifstream(path).rdbuf();
        rapidjson::Document file;
        file.Parse(text.str().c_str());
        require(!file.HasParseError(), "cannot open");
        balls_.clear();
        index_.clear();
        for (auto const& object : file["objects"].GetArray()) {
            auto const& values = object["values"];
            auto ball = std::make_unique<Ball>();
            require(ball->id.parse(object["id"].GetString()), "no identity");
            ball->name = values["name"].GetString();
            ball->size = values["size"].GetDouble();
            ball->x = values["x"].GetDouble();
            ball->fill = values["fill"].GetString();
            ball->tag = values["tag"].GetString();
            insert(std::move(ball));
        }
    }
    void copyAll() {
        std::size_t const size = balls_.size();
        for (std::size_t i = 0; i < size; ++i) {
            auto ball = std::make_unique<Ball>(*balls_[i]);
            ball->id.generate();
            insert(std::move(ball));
        }
    }
    void removeAll() {
        index_.clear();
        removed_.swap(balls_);
    }
    void undo() {
        for (auto& ball : removed_) insert(std::move(ball));
        removed_.clear();
    }

private:
    struct Ball {
        urOS::Uuid id;
        std::string name;
        double size = 1;
        double x = 0;
        std::string fill = "solid";
        std::string tag;
    };

    void insert(std::unique_ptr<Ball> ball) {
        index_[ball->id] = ball.get();
        balls_.push_back(std::move(ball));
    }
    template <class Writer>
    static void write(Writer& writer, Ball const& ball) {
        auto const text = [&](char const* key, std::string const& value) {
            writer.Key(key);
            writer.String(value.c_str(), static_cast<rapidjson::SizeType>(value.size()));
        };
        auto const number = [&](char const* key, double value) {
            writer.Key(key);
            writer.Double(value);
        };
        writer.StartObject();
        text("class", "Ball");
        text("id", std::string(ball.id.asString()));
        writer.Key("values");
        writer.StartObject();
        text("fill", ball.fill);
        text("name", ball.name);
        number("size", ball.size);
        text("tag", ball.tag);
        number("x", ball.x);
        writer.EndObject();
        writer.EndObject();
    }

    std::vector<std::unique_ptr<Ball>> balls_;
    std::vector<std::unique_ptr<Ball>> removed_;
    std::unordered_map<urOS::Uuid, Ball*> index_;
};

template <class Scene>
std::shared_ptr<Scene> built(int objects) {
    auto scene = std::make_shared<Scene>();
    scene->build(objects);
    return scene;
}

template <class Scene>
Side building(char const* name, int objects) {
    return {name, [=] {
                Scene scene;
                return seconds([&] { scene.build(objects); });
            }};
}

template <class Scene>
Side saving(char const* name, char const* fileName, int objects) {
    return {name, [scene = built<Scene>(objects), file = std::make_shared<TemporaryFile>(fileName)] {
                return seconds([&] { scene->save(file->path()); });
            }};
}

template <class Scene>
Side opening(char const* name, char const* fileName, int objects) {
    auto const file = std::make_shared<TemporaryFile>(fileName);
    built<Scene>(objects)->save(file->path());
    return {name, [=] {
                Scene scene;
                return seconds([&] { scene.open(file->path()); });
            }};
}

/// Copies are pasted beside the originals, with identities of their own.
template <class Scene>
Side copying(char const* name, int objects) {
    return {name, [=] {
                auto const scene = built<Scene>(objects);
                return seconds([&] { scene->copyAll(); });
            }};
}

template <class Scene>
Side undoingDeletion(char const* name, int objects) {
    return {name, [scene = built<Scene>(objects)] {
                scene->removeAll();
                return seconds([&] { scene->undo(); });
            }};
}

/// Of an object with the default values, every fifth of them a group; what was set comes on top.
Side bytesPerObject(int objects) {
    return {"nxSupport", [=] {
                auto const heapBytes = [] {
                    struct mallinfo2 const info = mallinfo2();
                    return static_cast<double>(info.uordblks + info.hblkhd);
                };
                double const before = heapBytes();
                OurScene scene;
                scene.buildGroups(objects);
                scene.forgetHistory();
                return (heapBytes() - before) / objects;
            }};
}

/// Changes one property of a document of that size again and again.
Side setting(char const* name, int objects, int times) {
    return {name, [scene = built<OurScene>(objects), times] {
                scene->forgetHistory();
                return seconds([&] {
                    for (int i = 0; i < times; ++i) scene->set(i);
                });
            }};
}

}  // namespace

void addDocumentRows(Suite& suite) {
    int const objects = suite.scaled(100'000);
    char const* const us = "nxSupport";
    char const* const peer = "structures and RapidJSON";
    suite.compare("document/build", 2.0, [=] {
        return Sides{building<OurScene>(us, objects), building<PlainScene>(peer, objects)};
    });
    suite.compare("document/save", 2.0, [=] {
        return Sides{saving<OurScene>(us, ".ours.json", objects), saving<PlainScene>(peer, ".plain.json", objects)};
    });
    suite.compare("document/save-packets", 2.0, [=] {
        return Sides{saving<OurScene>(us, ".ours.nx", objects), saving<PlainScene>(peer, ".plain.json", objects)};
    });
    suite.compare("document/open", 2.0, [=] {
        return Sides{opening<OurScene>(us, ".ours.json", objects), opening<PlainScene>(peer, ".plain.json", objects)};
    });
    suite.compare("document/open-packets", 2.0, [=] {
        return Sides{opening<OurScene>(us, ".ours.nx", objects), opening<PlainScene>(peer, ".plain.json", objects)};
    });
    suite.compare("document/copy", 2.0, [=] {
        return Sides{copying<OurScene>(us, objects), copying<PlainScene>(peer, objects)};
    });
    suite.compare("document/undo-deletion", 2.0, [=] {
        return Sides{undoingDeletion<OurScene>(us, objects), undoingDeletion<PlainScene>(peer, objects)};
    });
    suite.compare(
        "document/bytes-per-object", 1.0,
        [=] {
            return Sides{bytesPerObject(objects), {"400 bytes each", [] { return 400.0; }}};
        },
        Unit::bytes);
    int const sets = suite.scaled(100'000);
    suite.compare("document/set-among-many", 1.5, [=] {
        return Sides{setting(us, objects, sets), setting("among ten objects", 10, sets)};
    });
}

}  // namespace bench
