// Keys, resources and outputs that the tests of the cache share.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "foundation/urOS/MemoryIOStream.h"
#include "foundation/urOS/OStream.h"
#include "krcache/Manager.h"
#include "krcache/debugChannel.h"

namespace urKRCache::test {

template <class... Args>
using Hook = std::function<void(Args...)>;

/// Counts as `size` bytes and pages `payload`.
struct Blob : Resource {
    explicit Blob(unsigned bytes, std::string text = "payload") : size(bytes), payload(std::move(text)) {}

    unsigned onGetSizeInBytes() const override { return size; }
    void onSerialize(urOS::IOStream& stream) override {
        static_cast<void>(stream.write(payload.data(), payload.size()));
        length = payload.size();
        payload.clear();
        if (onPage) onPage();
    }
    void onDeserialize(urOS::IOStream& stream) override {
        payload.resize(length);
        std::size_t done = 0;
        static_cast<void>(stream.read(payload.data(), length, &done));
        payload.resize(done);
        if (onPage) onPage();
    }

    unsigned size;
    std::string payload;
    std::size_t length = 0;
    Hook<> onPage;
};

/// Equal by number. Builds a blob of `size` bytes; what else it does is up to its hooks.
struct Key : KeyData {
    explicit Key(int id, unsigned bytes = 1000) : number(id), size(bytes) {}

    int onCompare(KeyData const* other) const override {
        ++compares;
        if (onComparing) onComparing();
        return number - static_cast<Key const*>(other)->number;
    }
    unsigned onHash() const override {
        ++hashes;
        return hash;
    }
    ur::Reference<Resource> onCreateResource() const override {
        ++builds;
        if (onBuild) onBuild();
        if (size == none) return {};
        return make ? make() : ur::Reference<Resource>(new Blob(size));
    }
    void onInitializeResource(ur::Reference<Resource> /*resource*/) const override {
        if (onInitialize) onInitialize();
    }
    void onVisitSubKeys(KeyVisitor& visitor) const override {
        for (auto const& shim : sources) visitor.visit(shim.get());
        if (onVisit) onVisit(visitor);
    }
    void onResourceCleared() override {
        if (onCleared) onCleared();
    }
    void onKeyRemoved() override {
        if (onRemoved) onRemoved();
    }
    bool hasPredeterminedSize() const override { return expected != 0; }
    unsigned getPredeterminedSize() const override { return expected; }

    static constexpr unsigned none = ~0U;

    int number;
    unsigned size;  ///< `none`: builds nothing
    unsigned expected = 0;
    unsigned hash = 7;  ///< the same for all unless set, so that comparing decides
    std::vector<ur::Reference<Shim>> sources;
    std::function<ur::Reference<Resource>()> make;
    Hook<> onBuild, onInitialize, onCleared, onRemoved, onComparing;
    Hook<KeyVisitor&> onVisit;
    mutable int builds = 0;
    mutable int compares = 0;
    mutable int hashes = 0;
};

/// What is printed on the cache's channel while this lives.
class Messages {
public:
    Messages() : out_(stream_) {
        static_cast<void>(stream_.open(urOS::openForWriting));
        debugChannel().setOutput(&out_);
        debugChannel().enable();
    }
    Messages(Messages const&) = delete;
    Messages& operator=(Messages const&) = delete;
    ~Messages() {
        debugChannel().disable();
        debugChannel().setOutput(nullptr);
    }

    /// Since the last time.
    std::string take() {
        std::string text(stream_.contents().view());
        static_cast<void>(stream_.open(urOS::openForWriting));
        return text;
    }

private:
    urOS::MemoryIOStream stream_;
    urOS::OStream out_;
};

/// A folder that goes with this object.
class Folder {
public:
    Folder() {
        std::string name = (std::filesystem::temp_directory_path() / "cacheXXXXXX").string();
        path_ = ::mkdtemp(name.data());
    }
    Folder(Folder const&) = delete;
    Folder& operator=(Folder const&) = delete;
    ~Folder() { std::filesystem::remove_all(path_); }

    [[nodiscard]] std::filesystem::path const& path() const { return path_; }
    [[nodiscard]] std::filesystem::path pageFile() const { return path_ / "urKRCachePageFile.dat"; }
    [[nodiscard]] urString::IString text() const { return urString::IString(path_.c_str()); }

private:
    std::filesystem::path path_;
};

/// A manager with a folder of its own. After each test everything must still hold.
struct Cache : Folder {
    Manager manager{text()};

    ur::Reference<Shim> shim(ur::Reference<Key> const& key, Shim::KeyType type = Shim::Retained) {
        return manager.getShim(key, type);
    }
    /// A shim whose key builds from those of `sources`.
    ur::Reference<Shim> derived(int number, std::vector<ur::Reference<Shim>> sources,
                                Shim::KeyType type = Shim::Retained) {
        auto key = ur::make<Key>(number);
        key->sources = std::move(sources);
        return shim(key, type);
    }
    ur::Reference<Resource> access(ur::Reference<Shim> const& shim) { return manager.accessResource(shim); }
};

inline Key& keyOf(ur::Reference<Shim> const& shim) { return static_cast<Key&>(*shim->keyData()); }

}  // namespace urKRCache::test
