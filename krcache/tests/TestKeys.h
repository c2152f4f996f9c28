// Keys, resources and outputs shared by the cache's tests.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "foundation/ur/tests/TemporaryFolder.h"
#include "foundation/urOS/MemoryIOStream.h"
#include "foundation/urOS/OStream.h"
#include "krcache/Manager.h"
#include "krcache/debugChannel.h"
#include "krcache/impl/Tuning.h"

namespace urKRCache::test {

using Hook = std::function<void()>;

constexpr unsigned megabyte = 1048576;

/// Has `size` bytes and pages `payload`.
struct Blob : Resource {
    explicit Blob(unsigned bytes, std::string text = "payload") : size(bytes), payload(std::move(text)) {}

    unsigned onGetSizeInBytes() const override { return onSize(), size; }
    void onSerialize(urOS::IOStream& stream) override {
        static_cast<void>(stream.write(payload.data(), payload.size()));
        length = payload.size();
        payload.clear();
        onPage();
    }
    void onDeserialize(urOS::IOStream& stream) override {
        payload.resize(length);
        std::size_t done = 0;
        static_cast<void>(stream.read(payload.data(), length, &done));
        payload.resize(done);
        onPage();
    }

    unsigned size;
    std::string payload;
    std::size_t length = 0;
    Hook onPage = [] {}, onSize = [] {};
};

/// Compares by number. Builds a blob of `size` bytes and calls its hooks.
struct Key : KeyData {
    explicit Key(int id, unsigned bytes = 1000) : number(id), size(bytes) {}

    int onCompare(KeyData const* other) const override {
        onComparing();
        return number - static_cast<Key const*>(other)->number;
    }
    unsigned onHash() const override { return ++hashes, hash; }
    ur::Reference<Resource> onCreateResource() const override {
        ++builds, onBuild();
        return make ? make() : ur::Reference<Resource>(size == none ? nullptr : new Blob(size));
    }
    void onInitializeResource(ur::Reference<Resource> /*resource*/) const override { onInitialize(); }
    void onVisitSubKeys(KeyVisitor& visitor) const override {
        for (auto const& shim : sources) visitor.visit(shim.get());
        onVisit(visitor);
    }
    void onResourceCleared() override { onCleared(); }
    void onKeyRemoved() override { onRemoved(); }
    bool hasPredeterminedSize() const override { return expected != 0; }
    unsigned getPredeterminedSize() const override { return expected; }

    static constexpr unsigned none = ~0U;

    int number;
    unsigned size;  ///< `none`: builds nothing
    unsigned expected = 0;
    unsigned hash = 7;  ///< the same for all by default, so that the comparison decides
    std::vector<ur::Reference<Shim>> sources;
    std::function<ur::Reference<Resource>()> make;
    Hook onBuild = [] {}, onInitialize = [] {}, onCleared = [] {}, onRemoved = [] {}, onComparing = [] {};
    std::function<void(KeyVisitor&)> onVisit = [](KeyVisitor& /*visitor*/) {};
    mutable int builds = 0, hashes = 0;
};

/// Collects what is printed on the cache's channel during its lifetime.
struct Messages {
    Messages() {
        static_cast<void>(stream_.open(urOS::openForWriting));
        debugChannel().setOutput(&out_);
        debugChannel().enable();
    }
    ~Messages() {
        debugChannel().disable();
        debugChannel().setOutput(nullptr);
    }
    /// The messages since the last call.
    std::string take() {
        std::string text(stream_.contents().view());
        static_cast<void>(stream_.open(urOS::openForWriting));
        return text;
    }

private:
    urOS::MemoryIOStream stream_;
    urOS::OStream out_{stream_};
};

inline urString::IString nameOf(std::filesystem::path const& path) {
    return urString::IString(path.string(), urString::Encoding::multibyte);
}

/// The second class of keys; their resources are not resident.
struct ElsewhereKey : Key {
    using Key::Key;
    bool isResidential() const override { return false; }
};

/// A manager in a folder of its own.
struct Cache {
    explicit Cache(Tuning const& tuning = {}) : manager(nameOf(folder.path()), tuning) {}

    ur::Reference<Shim> shim(ur::Reference<Key> const& key) { return manager.getShim(key, Shim::Retained); }
    ur::Reference<Resource> access(ur::Reference<Shim> const& shim) { return manager.accessResource(shim); }

    ::test::TemporaryFolder const folder;
    std::filesystem::path const pageFile = folder / "urKRCachePageFile.dat";
    Manager manager;
};

/// A letter for each shim: m in memory, p paged out, - absent, x removed; with ! if it is locked.
inline std::string states(std::vector<ur::Reference<Shim>> const& shims) {
    std::string text;
    for (auto const& shim : shims) {
        text += !shim->manager() ? 'x' : shim->isResourceAllocated() ? 'm' : shim->isResourceSerialized() ? 'p' : '-';
        if (shim->isResourceLocked()) text += '!';
    }
    return text;
}

inline Key& keyOf(ur::Reference<Shim> const& shim) { return static_cast<Key&>(*shim->keyData()); }

}  // namespace urKRCache::test
