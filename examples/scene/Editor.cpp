// Files, steps and settings.
#include "examples/scene/Editor.h"

#include <fstream>
#include <sstream>

#include "examples/scene/meshFiles.h"
#include "foundation/urOS/File.h"
#include "plst/JsonReport.h"

namespace scene {

using nxSupport::Context;
using nxSupport::Object;
using urString::CString;
using Path = std::filesystem::path;

namespace {

urKRCache::Manager* theCache = nullptr;

nxSupport::ObjectCatalog& filled(nxSupport::ObjectCatalog& catalog) {
    describe(catalog);
    return catalog;
}

}  // namespace

// [editor]
Editor::Editor(urThread::RunQueue& queue, Path folder)
    : ServiceDomain(queue),
      folder_(std::move(folder)),
      cache_(folder_),
      document_(filled(catalog_), "Scene"),
      jobs_(*this),
      shapes_(cache_, jobs_) {
    offer(&broadcaster_);
    theCache = &cache_;
    urKRCache::setCacheManagerFunc([] { return theCache; });
    document_.history().setByteLimit(std::size_t(256) << 20U);
    document_.history().changedSignal().addCallback(client_, [this] { changedSignal.emit(); });
    document_.changedSignal().addCallback(client_, [this](Object&, CString const&) { changedSignal.emit(); });
    document_.replacedSignal().addCallback(client_, [this] { shapes_.clear(); });
    jobs_.ended.addCallback(client_, [this](nxSupport::Job const& job) {
        if (job.failed()) messageSignal.emit(job.failureText());
        changedSignal.emit();
    });
}
// [editor]

Editor::~Editor() {
    stopTimeline();
    shapes_.clear();
    urKRCache::setCacheManagerFunc(nullptr);
}

// [perform]
bool Editor::perform(CString const& name, std::function<void()> const& change) {
    try {
        document_.setStepName(name);
        Context const context(this, Context::Momentary);
        change();
        return true;
    } catch (std::exception const& exception) {
        messageSignal.emit(exception.what());
        return false;
    }
}
// [perform]

bool Editor::report(urUtil::Error const& error) {
    if (error.isError()) messageSignal.emit(error.message());
    changedSignal.emit();
    return error.ok();
}

// [import]
void Editor::importMesh(Path const& path) {
    auto const mesh = std::make_shared<Mesh>();
    jobs_.add(
        path.filename().string(),
        [path, mesh](nxSupport::Job& job) {
            *mesh = readMesh(path, [&job](double part) { return job.setProgress(part), !job.isCancelled(); });
        },
        [this, path, mesh](nxSupport::Job const& job) {
            if (job.isCancelled()) messageSignal.emit(path.filename().string() + ": cancelled");
            if (!*mesh) return;
            std::string const file = std::filesystem::absolute(path).string();
            shapes_.provide(file, std::move(*mesh));
            perform("Import " + path.stem().string(), [&] {
                auto const object = document_.make("Mesh");
                object->set("name", path.stem().string());
                object->set("file", file);
                document_.root().append(object);
                document_.select({object.get()});
            });
        });
}
// [import]

// [files]
void Editor::open(Path const& path) {
    if (!report(nxSupport::open(document_, path))) return;
    path_ = path;
    recovered_.clear();  // its file stays for the next start
    changedSignal.emit();
}

bool Editor::save(Path const& path) {
    if (!report(nxSupport::save(document_, path))) return false;
    path_ = path;
    if (!recovered_.empty()) std::filesystem::remove(std::exchange(recovered_, {}));
    changedSignal.emit();
    return true;
}

void Editor::autosave() {
    if (document_.history().depth() > 0 || !document_.isModified()) return;
    report(nxSupport::autosave(document_, folder_, path_.string()));
}

bool Editor::recover() {
    auto const left = nxSupport::recoverable(folder_);
    if (left.empty() || !report(nxSupport::recover(document_, left.front().path))) return false;
    recovered_ = left.front().path;
    path_ = std::string(left.front().name);
    messageSignal.emit("Recovered what the last session did not save");
    return true;
}
// [files]

void Editor::discard() {
    report(nxSupport::discardAutosave(document_));
    if (!recovered_.empty()) std::filesystem::remove(std::exchange(recovered_, {}));
}

std::string Editor::title() const {
    std::string const name = path_.empty() ? "untitled" : path_.filename().string();
    return name + (document_.isModified() ? "*" : "");
}

// [settings]
void Editor::loadSettings() {
    std::ifstream file(folder_ / "settings.json");
    std::ostringstream text;
    text << file.rdbuf();
    ur::Reference<nxPLST::Item> item;
    nxPLST::JsonReport fault;
    if (file && !nxPLST::convertFromJSON(item, text.view(), fault)) {
        messageSignal.emit("settings.json: line " + std::to_string(fault.location.line) + ": " +
                           std::string(fault.reason));
    }
    Settings read;
    auto const members = nxPLST::asDictionary(item);
    ur::visitMembers(read, [&](char const* name, auto& member) { member = nxPLST::get(members, name, member); });
    setSettings(read);
}

void Editor::setSettings(Settings const& settings) {
    settings_ = settings;
    cache_.setMemoryLimit64(static_cast<std::uint64_t>(settings.cacheMegabytes * 1048576));
    if (!nxPLST::outputJSON(folder_ / "settings.json", nxPLST::itemOf(settings))) {
        messageSignal.emit("settings.json: cannot be written");
    }
}
// [settings]

void Editor::startTimeline() {
    timeline_.emplace();
    nxSupport::Timeline::setActive(&*timeline_);
    setContextObserver(&*timeline_);
    cache_.setObserver(&*timeline_);
}

void Editor::stopTimeline() {
    nxSupport::Timeline::setActive(nullptr);
    setContextObserver(nullptr);
    cache_.setObserver(nullptr);
    timeline_.reset();
}

bool Editor::writeTimeline(Path const& path) {
    if (!timeline_) return false;
    urOS::File file;
    urUtil::Error error = file.open(path, urOS::openForWriting);
    if (error.ok()) error = timeline_->write(file);
    stopTimeline();
    return report(error);
}

}  // namespace scene
