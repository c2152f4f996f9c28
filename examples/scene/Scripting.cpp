// Exposes the document and runs scripts.
#include "examples/scene/Scripting.h"

#include <fstream>
#include <sstream>

#include "foundation/nxRFL/ExposeClass.h"
#include "foundation/urOS/AppOutput.h"
#include "script/ScriptValue.h"
#include "script/initialize.h"
#include "support/services/Debug.h"

namespace scene {

using nxSupport::Object;
using nxSupport::ScriptValue;
using ur::Reference;
using urString::CString;

namespace {

void set(Object& object, CString const& name, ScriptValue const& value) {
    auto const* const description = object.objectClass().find(name);
    CString const fault = description ? description->faultOf(value.item) : CString();
    if (!object.setValue(name, value.item)) throw nxRFL::Exception(CString(name).append(" ").append(fault));
}

Reference<Object> add(Object& parent, CString const& className, CString const& name) {
    auto object = parent.document()->make(className);
    if (!object) throw nxRFL::Exception(CString("there is no class ").append(className));
    object->set("name", name);
    if (!parent.append(object)) throw nxRFL::Exception(CString("no ").append(className).append(" may be added here"));
    return object;
}

}  // namespace

// [scripting]
Scripting::Scripting(Editor& editor) : editor_(editor) {
    nxSupport::Debug::getInstance();  // opens the output, which then goes to the console
    urOS::AppOutput::getInstance().open(output_);
    nxSupport::Context const context(&editor, nxSupport::Context::NoTxn);
    nxSupport::initialize(database_);
    exposeObjects();
    exposeScene();
    state_.emplace(database_, nxLC::Library::sandboxed);
    state_->setLimits({.instructions = 50'000'000, .memory = 64'000'000});
    nxSupport::initialize(*state_);
}
// [scripting]

Scripting::~Scripting() { static_cast<void>(urOS::AppOutput::getInstance().open("-", true)); }

urUtil::Error Scripting::Output::write(void const* bytes, std::size_t count, std::size_t* done) {
    if (done) *done = count;
    owner_.printed.emit({static_cast<char const*>(bytes), count});
    return {};
}

// [objects]
void Scripting::exposeObjects() {
    nxRFL::ExposeClass<Object>(database_, "scene::Object")
        .setAliveTest([](void const* object) { return static_cast<Object const*>(object)->document() != nullptr; })
        .addProperty("class", [](Object& self) { return self.objectClass().name(); })
        .addProperty("path", [](Object& self) { return self.path(); })
        .addProperty("parent", [](Object& self) { return self.parent(); })
        .addProperty("children",
                     [](Object& self) {
                         ur::vector<Reference<Object>> children;
                         for (Object& child : self.children()) children.emplace_back(&child);
                         return children;
                     })
        .addMethod("add", &add, {"class", "name"})
        .addMethod("remove", [](Object& self) { return self.parent() && self.parent()->remove(self); })
        .addMethod("moveTo", [](Object& self, Object& parent) { return self.moveTo(parent, parent.children().size()); },
                   {"parent"})
        .addOtherNames([](Object& self, CString const& name) { return ScriptValue{self.value(name)}; }, &set);
}
// [objects]

void Scripting::exposeScene() {
    auto& document = editor_.document();
    functions_.add("root", [&document] { return Reference<Object>(&document.root()); })
        .add("find", [&document](std::string_view path) { return Reference<Object>(document.find(path)); }, {"path"})
        .add("select",
             [&document](ur::vector<Reference<Object>> const& objects) {
                 std::vector<Object*> selected;
                 for (auto const& object : objects) selected.push_back(object.get());
                 document.select(selected);
             },
             {"objects"})
        .add("selection",
             [&document] {
                 ur::vector<Reference<Object>> selected;
                 for (Object* const object : document.selection()) selected.emplace_back(object);
                 return selected;
             })
        .add("reload", [this](Object& mesh) { editor_.shapes().reload(mesh.get<std::string>("file")); }, {"mesh"});
}

bool Scripting::run(std::string_view source, std::string const& name) {
    std::string trace;
    bool const isDone = editor_.perform(name, [&] {
        if (auto const error = state_->run(source, "=" + name)) {
            trace = error->trace();
            throw std::runtime_error(error->what());
        }
    });
    if (!trace.empty()) printed.emit(trace + "\n");
    return isDone;
}

bool Scripting::runFile(std::filesystem::path const& path) {
    std::ifstream file(path);
    std::ostringstream source;
    source << file.rdbuf();
    if (!file) return editor_.messageSignal.emit(path.string() + ": cannot be read"), false;
    return run(source.view(), path.filename().string());
}

}  // namespace scene
