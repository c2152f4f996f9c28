// Cache keys whose text is built by a script.
#include "tools/nxhost/Cache.h"

#include <limits>
#include <memory>
#include <optional>
#include <utility>

#include "foundation/nxRFL/ExposeClass.h"
#include "foundation/ur/hashfunction.h"
#include "foundation/urOS/IOStream.h"
#include "support/services/Timeline.h"
#include "tools/nxhost/requireFunction.h"

namespace nxhost {

using nxRFL::Function;
using ur::Reference;
using urKRCache::Manager;
using urKRCache::Shim;
using urString::CString;

namespace {

class Text final : public urKRCache::Resource {
public:
    Text(CString text, std::shared_ptr<ur::Account> account)
        : text_(std::move(text)), size_(text_.size()), charge_(std::move(account), size_) {}
    [[nodiscard]] CString const& text() const noexcept { return text_; }

protected:
    unsigned onGetSizeInBytes() const override { return static_cast<unsigned>(size_); }
    void onSerialize(urOS::IOStream& stream) override {
        // The stream keeps a failure; the cache detects it and drops the text.
        static_cast<void>(stream.write(text_.data(), size_));
        text_ = CString();
        charge_.set(0);
    }
    void onDeserialize(urOS::IOStream& stream) override {
        text_.resize(size_);
        static_cast<void>(stream.read(text_.data(), size_));
        charge_.set(size_);
    }

private:
    CString text_;
    std::size_t size_;
    ur::Charge charge_;
};

/// The bytes that the cache and a script's handle use for one key.
constexpr std::size_t bytesOfKey = 768;

/// Identifies one text and holds the function that builds it. Keys with equal names are equal.
class TextKey final : public urKRCache::KeyData {
public:
    TextKey(CString name, Reference<Shim> source, Reference<Function> build)
        : name_(std::move(name)),
          source_(std::move(source)),
          build_(std::move(build)),
          charge_(build_->getDB()->account(), name_.size() + bytesOfKey) {}

    [[nodiscard]] Reference<Shim> const& source() const noexcept { return source_; }
    /// Sets the source's text if it is already known.
    void setSourceText(std::optional<CString> text) noexcept { sourceText_ = std::move(text); }

protected:
    void onVisitSubKeys(urKRCache::KeyVisitor& visitor) const override {
        if (source_) visitor.visit(source_.get());
    }
    int onCompare(KeyData const* other) const override {
        return name_.compare(static_cast<TextKey const*>(other)->name_);
    }
    unsigned onHash() const override { return getTypeHash() ^ ur::hashfunction(name_); }
    Reference<urKRCache::Resource> onCreateResource() const override {
        nxRFL::Stack arguments;
        nxRFL::Stack results;
        if (source_) {
            nxRFL::Writer writer(arguments);
            writer.writeText(sourceText_ ? *sourceText_ : Resource(*source_->manager(), source_).text());
        }
        nxSupport::ScriptCallScope const call(name_);
        build_->call(arguments, results);
        nxRFL::Reader reader = nxRFL::Reader::ofResults(results, *build_);
        CString const& text = reader.readText();
        if (text.size() > std::numeric_limits<unsigned>::max()) throw nxRFL::Exception("a text of 4 GiB or more");
        return ur::make<Text>(text, build_->getDB()->account());
    }

private:
    CString name_;
    Reference<Shim> source_;
    Reference<Function> build_;
    std::optional<CString> sourceText_;
    ur::Charge charge_;
};

Reference<Resource> makeResource(Manager& manager, CString const& name, Reference<Shim> source,
                                 Reference<Function> function) {
    auto key = ur::make<TextKey>(name, std::move(source), std::move(function));
    return ur::make<Resource>(manager, manager.getShim(std::move(key), Shim::Retained));
}

Reference<Resource> resource(Manager& manager, CString const& name, Reference<Function> function) {
    requireFunction(function != nullptr, "urKRCache::Manager.resource", "2 (build)");
    return makeResource(manager, name, nullptr, std::move(function));
}

Reference<Resource> derived(Manager& manager, CString const& name, Resource& source, Reference<Function> function) {
    requireFunction(function != nullptr, "urKRCache::Manager.derived", "3 (build)");
    if (!source.shim()->manager()) throw nxRFL::Exception("the source has been removed");
    return makeResource(manager, name, source.shim(), std::move(function));
}

ur::map<CString, double> statistics(Manager& manager) {
    urKRCache::Statistics const counts = manager.statistics();
    ur::map<CString, double> result{{"keys", manager.numKeys()}};
    for (auto const& row : urKRCache::statisticsRows) result[row.name] = static_cast<double>(counts.*row.value);
    return result;
}

Reference<urKRCache::Resource> access(Manager& manager, Reference<Shim> const& shim) {
    if (!shim->manager()) throw nxRFL::Exception("the resource has been removed");
    auto built = manager.accessResource(shim);
    if (!built || !shim->isResourceAllocated()) throw nxRFL::Exception("the cache has no room for the resource");
    return built;
}

/// Passes the source's text to a key while that builds its own text.
class SourceTextScope {
public:
    SourceTextScope(Shim const& shim, std::optional<CString> text) : key_(shim.keyData()) {
        if (key_) static_cast<TextKey&>(*key_).setSourceText(std::move(text));
    }
    SourceTextScope(SourceTextScope const&) = delete;
    SourceTextScope& operator=(SourceTextScope const&) = delete;
    ~SourceTextScope() {
        if (key_) static_cast<TextKey&>(*key_).setSourceText(std::nullopt);
    }

private:
    Reference<urKRCache::KeyData> key_;
};

/// The chain of sources that are neither in memory nor in the page file, nearest first.
ur::vector<Reference<Shim>> missingSources(Shim const& shim) {
    ur::vector<Reference<Shim>> result;
    for (auto key = shim.keyData(); key; key = result.back()->keyData()) {
        Reference<Shim> const& source = static_cast<TextKey const&>(*key).source();
        if (!source || source->isResourceAllocated() || source->isResourceSerialized()) break;
        result.push_back(source);
    }
    return result;
}

}  // namespace

/// A chain of sources may be long, so this builds the farthest first and passes each text to the next.
CString Resource::text() const {
    bool const isThere = shim_->isResourceAllocated() || shim_->isResourceSerialized();
    auto missing = isThere ? ur::vector<Reference<Shim>>() : missingSources(*shim_);
    std::optional<CString> text;
    auto const build = [this, &text](Shim& shim) {
        SourceTextScope const handed(shim, std::exchange(text, std::nullopt));
        text = static_cast<Text const&>(*access(manager_, Reference<Shim>(&shim))).text();
    };
    for (; !missing.empty(); missing.pop_back()) build(*missing.back());
    build(*shim_);
    return std::move(*text);
}

void exposeCache(nxRFL::Database& database, std::uint64_t mostMemory) {
    auto const setLimit = [mostMemory](Manager& manager, std::uint64_t bytes) {
        bool const isTooMuch = mostMemory != 0 && (bytes == 0 || bytes > mostMemory);
        manager.setMemoryLimit64(isTooMuch ? mostMemory : bytes);
    };
    nxRFL::ExposeClass<Resource>(database, "nxhost::Resource")
        .addProperty("text", &Resource::text)
        .addProperty("inMemory", &Resource::inMemory)
        .addMethod("keepOnDisk", &Resource::keepOnDisk)
        .addMethod("lock", &Resource::lock)
        .addMethod("unlock", &Resource::unlock)
        .addMethod("remove", &Resource::remove);
    nxRFL::ExposeClass<Manager>(database, "urKRCache::Manager")
        .addMethod("resource", &resource, {"name", "build"})
        .addMethod("derived", &derived, {"name", "source", "build"})
        .addMethod("clear", &Manager::clear)
        .addMethod("startInteraction", &Manager::startInteraction)
        .addMethod("endInteraction", &Manager::endInteraction)
        .addProperty("memoryLimit", &Manager::getMemoryLimit64, setLimit)
        .addProperty("statistics", &statistics);
}

}  // namespace nxhost
