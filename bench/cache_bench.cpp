// The resource cache: hits, misses, real access traces, paging, and how its cost grows.
#include <QCache>
#include <QFile>
#include <QTemporaryDir>
#include <cmath>
#include <cstdio>
#include <list>
#include <memory>
#include <numeric>
#include <random>
#include <stdexcept>
#include <unordered_map>
#include <vector>

#include "bench/rows.h"
#include "foundation/urOS/MemoryIOStream.h"
#include "krcache/Manager.h"
#include "krcache/TraceRecorder.h"

namespace bench {
namespace {

using ur::Reference;
using urKRCache::KeyData;
using urKRCache::Manager;
using urKRCache::Resource;
using urKRCache::Shim;

/// The cached data: tiles of an image pyramid. All sides use the same key and the same payload.
struct Tile {
    std::uint32_t place;
    std::uint32_t level;

    friend bool operator==(Tile const&, Tile const&) = default;
    friend std::size_t qHash(Tile const& tile, std::size_t seed) { return qHashMulti(seed, tile.place, tile.level); }
};

struct Payload {
    explicit Payload(Tile tile) : sum(tile.place + tile.level) {}

    std::uint64_t sum;
    char pixels[56];
};

struct TileHash {
    std::size_t operator()(Tile const& tile) const {
        return std::hash<std::uint64_t>()(tile.place | std::uint64_t{tile.level} << 32);
    }
};

constexpr char const* listName = "list+unordered_map";
constexpr char const* noFolder = "/no/such/folder";  // no page file, so nothing is paged

Tile tile(std::size_t number) { return {static_cast<std::uint32_t>(number), static_cast<std::uint32_t>(number % 7)}; }

struct TileResource final : Resource {
    TileResource(Tile tile, unsigned bytes) : payload(tile), size(bytes) {}
    unsigned onGetSizeInBytes() const override { return size; }

    Payload payload;
    unsigned size;
};

struct TileKey : KeyData {
    TileKey(Tile what, unsigned bytes) : tile(what), size(bytes) {}

    int onCompare(KeyData const* other) const override {
        Tile const& theirs = static_cast<TileKey const*>(other)->tile;
        return tile == theirs ? 0 : std::pair(tile.place, tile.level) < std::pair(theirs.place, theirs.level) ? -1 : 1;
    }
    unsigned onHash() const override { return (tile.place * 31 + tile.level) * 2654435761U ^ 0x5bd1e995U; }
    Reference<Resource> onCreateResource() const override { return ur::make<TileResource>(tile, size); }

    Tile tile;
    unsigned size;
};

/// Our cache, with the keys and shims that its clients hold.
struct Ours {
    Ours(std::vector<unsigned> const& sizes, std::uint64_t limit) : manager(noFolder) {
        manager.setMemoryLimit64(limit);
        for (unsigned const size : sizes) {
            keys.emplace_back(new TileKey(tile(keys.size()), size));
            shims.push_back(manager.getShim(keys.back(), Shim::Retained));
        }
    }
    std::uint64_t use(Reference<Shim> shim) {
        auto const resource = manager.accessResource(std::move(shim));
        return static_cast<TileResource&>(*resource).payload.sum;
    }

    Manager manager;
    std::vector<Reference<KeyData>> keys;
    std::vector<Reference<Shim>> shims;
};

struct QtCache {
    explicit QtCache(std::uint64_t limit) : cache(static_cast<qsizetype>(limit)) {}
    std::uint64_t use(std::size_t number, unsigned size) {
        Tile const key = tile(number);
        Payload* payload = cache.object(key);
        if (!payload) {
            payload = new Payload(key);
            std::uint64_t const sum = payload->sum;
            cache.insert(key, payload, size);
            return sum;
        }
        return payload->sum;
    }

    QCache<Tile, Payload> cache;
};

/// A cache as programmers write it when they need one.
class ListCache {
public:
    explicit ListCache(std::uint64_t limit) : limit_(limit) {}
    std::uint64_t use(std::size_t number, unsigned size) {
        Tile const key = tile(number);
        auto const found = entries_.find(key);
        if (found != entries_.end()) {
            order_.splice(order_.end(), order_, found->second);
            return found->second->payload->sum;
        }
        while (!order_.empty() && used_ + size > limit_) {
            used_ -= order_.front().size;
            entries_.erase(order_.front().key);
            order_.pop_front();
        }
        order_.push_back({key, size, std::make_shared<Payload>(key)});
        used_ += size;
        entries_.emplace(key, std::prev(order_.end()));
        return order_.back().payload->sum;
    }

private:
    struct Entry {
        Tile key;
        unsigned size;
        std::shared_ptr<Payload> payload;
    };

    std::uint64_t limit_;
    std::uint64_t used_ = 0;
    std::list<Entry> order_;
    std::unordered_map<Tile, std::list<Entry>::iterator, TileHash> entries_;
};

using Accesses = std::vector<std::uint32_t>;
using SharedAccesses = std::shared_ptr<Accesses const>;

SharedAccesses randomAccesses(std::size_t keys, int count) {
    std::mt19937 random(11);
    Accesses accesses(static_cast<std::size_t>(count));
    for (std::uint32_t& access : accesses) access = static_cast<std::uint32_t>(random() % keys);
    return std::make_shared<Accesses const>(std::move(accesses));
}

/// Accesses all keys in turn, repeatedly.
SharedAccesses roundAccesses(std::size_t keys, int count) {
    Accesses accesses(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < accesses.size(); ++i) accesses[i] = static_cast<std::uint32_t>(i % keys);
    return std::make_shared<Accesses const>(std::move(accesses));
}

/// A side that makes all accesses on one cache and keeps the cache.
template <class Cache, class Use>
Side accessing(char const* name, std::shared_ptr<Cache> cache, SharedAccesses const& accesses, Use use) {
    return {name, [=] {
                return seconds([&] {
                    std::uint64_t sum = 0;
                    for (std::uint32_t const access : *accesses) sum += use(*cache, access);
                    keep(sum);
                });
            }};
}

constexpr auto byShim = [](Ours& cache, std::size_t key) { return cache.use(cache.shims[key]); };
constexpr auto byKey = [](Ours& cache, std::size_t key) {
    return cache.use(cache.manager.getShim(cache.keys[key], Shim::Retained));
};
constexpr auto byPeerKey = [](auto& cache, std::size_t key) { return cache.use(key, 1); };

/// A side for each cache, with room for `room` of the keys.
template <class Use>
Sides caches(std::size_t keys, std::size_t room, SharedAccesses const& accesses, Use use) {
    return {accessing("krcache", std::make_shared<Ours>(std::vector(keys, 1U), room), accesses, use),
            accessing("QCache", std::make_shared<QtCache>(room), accesses, byPeerKey),
            accessing(listName, std::make_shared<ListCache>(room), accesses, byPeerKey)};
}

/// Every access misses, because it returns to a key just after its eviction.
Sides misses(std::size_t keys, int count) { return caches(keys, keys / 2, roundAccesses(keys, count), byShim); }

bool isAccess(urKRCache::TraceRecorder::Event event) {
    using Event = urKRCache::TraceRecorder::Event;
    return event == Event::hit || event == Event::build || event == Event::pageIn;
}

/// A recorded load: the accessed keys in order, and the size of each one's resource.
struct Trace {
    explicit Trace(std::string const& name) {
        QFile file(QString::fromStdString(NX_BENCH_TRACES "/" + name + ".z"));
        if (!file.open(QIODevice::ReadOnly)) throw std::runtime_error("cannot read the trace " + name);
        QByteArray const text = qUncompress(file.readAll());
        urOS::MemoryIOStream stream;
        urKRCache::TraceRecorder recorder;
        bool const isRead = stream.open(urOS::openForWriting).ok() &&
                            stream.write(text.data(), static_cast<std::size_t>(text.size())).ok() &&
                            stream.open(urOS::openRead).ok() && recorder.read(stream).ok();
        if (!isRead) throw std::runtime_error("not a trace: " + name);
        for (auto const& entry : recorder.entries()) {
            if (!isAccess(entry.event)) continue;
            accesses.push_back(entry.key);
            if (entry.key >= sizes.size()) sizes.resize(entry.key + 1);
            sizes[entry.key] = entry.size;
        }
    }

    Accesses accesses;
    std::vector<unsigned> sizes;
};

/// Replays the trace on caches with room for a quarter of all bytes.
Sides replays(std::string const& name, bool isQuick) {
    Trace trace(name);
    if (isQuick) trace.accesses.resize(trace.accesses.size() / 10);
    std::uint64_t const room = std::accumulate(trace.sizes.begin(), trace.sizes.end(), std::uint64_t{0}) / 4;
    auto const sizes = std::make_shared<std::vector<unsigned> const>(trace.sizes);
    auto const accesses = std::make_shared<Accesses const>(std::move(trace.accesses));
    auto const peerUse = [sizes](auto& cache, std::size_t key) { return cache.use(key, (*sizes)[key]); };
    return {accessing("krcache", std::make_shared<Ours>(*sizes, room), accesses, byKey),
            accessing("QCache", std::make_shared<QtCache>(room), accesses, peerUse),
            accessing(listName, std::make_shared<ListCache>(room), accesses, peerUse)};
}

/// Occupies as many bytes as it reports.
struct PageResource final : Resource {
    unsigned onGetSizeInBytes() const override { return static_cast<unsigned>(bytes.size()); }
    void onSerialize(urOS::IOStream& stream) override { static_cast<void>(stream.write(bytes.data(), bytes.size())); }
    void onDeserialize(urOS::IOStream& stream) override { static_cast<void>(stream.read(bytes.data(), bytes.size())); }

    std::vector<char> bytes = std::vector<char>(65536, 'p');
};

struct PageKey final : TileKey {
    using TileKey::TileKey;
    Reference<Resource> onCreateResource() const override { return ur::make<PageResource>(); }
};

/// Pages everything out and back in.
Side ourPaging(std::string const& folder, std::size_t pages) {
    auto const manager = std::make_shared<Manager>(folder);
    auto const shims = std::make_shared<std::vector<Reference<Shim>>>();
    for (std::size_t i = 0; i < pages; ++i) {
        shims->push_back(manager->getShim(Reference<KeyData>(new PageKey(tile(i), 1)), Shim::Retained));
        manager->setSerializable(shims->back());
        manager->accessResource(shims->back());
    }
    return {"krcache", [=] {
                double const cost = seconds([&] {
                    manager->clear();
                    for (auto const& shim : *shims) keep(manager->accessResource(shim));
                });
                if (manager->statistics().pagesIn % pages != 0) throw std::runtime_error("not everything was paged");
                return cost;
            }};
}

Side plainPaging(std::string const& folder, std::size_t pages) {
    std::shared_ptr<std::FILE> const file(std::fopen((folder + "/plain").c_str(), "wb+"), &std::fclose);
    auto const buffers = std::make_shared<std::vector<std::vector<char>>>(pages, std::vector<char>(65536, 'p'));
    return {"fwrite and fread", [=] {
                return seconds([&] {
                    std::rewind(file.get());
                    for (auto const& bytes : *buffers) std::fwrite(bytes.data(), 1, bytes.size(), file.get());
                    std::rewind(file.get());
                    for (auto& bytes : *buffers) keep(std::fread(bytes.data(), 1, bytes.size(), file.get()));
                });
            }};
}

/// Compares a limit of the process's resident size with a limit of the resources alone; both leave the same room.
Sides residentSizeMode(std::size_t keys, int count) {
    constexpr unsigned size = 4096;
    struct OffHeapKey final : TileKey {
        using TileKey::TileKey;
        bool isResidential() const override { return false; }
    };
    auto const accesses = roundAccesses(keys, count);
    auto const side = [&](char const* name, bool isResidentSize) {
        auto const cache = std::make_shared<Ours>(std::vector<unsigned>(), 0);
        for (std::size_t i = 0; i < keys; ++i) {
            cache->shims.push_back(
                cache->manager.getShim(Reference<KeyData>(new OffHeapKey(tile(i), size)), Shim::Retained));
        }
        if (isResidentSize) cache->manager.setUseResidentSize();
        std::uint64_t const others = isResidentSize ? cache->manager.getResidentSize64() : 0;
        cache->manager.setMemoryLimit64(others + keys / 2 * size);
        return accessing(name, cache, accesses, byShim);
    };
    return {side("krcache", true), side("without that mode", false)};
}

struct DerivedKey final : TileKey {
    DerivedKey(Tile what, Reference<Shim> from) : TileKey(what, 1), source(std::move(from)) {}
    void onVisitSubKeys(urKRCache::KeyVisitor& visitor) const override { visitor.visit(source.get()); }
    Reference<Shim> source;
};

/// Creates `count` shims and finds each again by its key.
double makeAndFind(std::size_t count) {
    Manager manager(noFolder);
    return seconds([&] {
        for (int round = 0; round < 2; ++round) {
            for (std::size_t i = 0; i < count; ++i) {
                keep(manager.getShim(Reference<KeyData>(new TileKey(tile(i), 1)), Shim::Retained));
            }
        }
    });
}

enum class Shape { fan, chain };

/// Creates `count` shims, all built from one or each from the previous one, and removes them with the first.
template <Shape shape>
double derive(std::size_t count) {
    Manager manager(noFolder);
    return seconds([&] {
        auto const source = manager.getShim(Reference<KeyData>(new TileKey(tile(0), 1)), Shim::Retained);
        Reference<Shim> from = source;
        for (std::size_t i = 1; i <= count; ++i) {
            auto const made = manager.getShim(Reference<KeyData>(new DerivedKey(tile(i), from)), Shim::Retained);
            if (shape == Shape::chain) from = made;
        }
        manager.removeResource(source);
    });
}

}  // namespace

void addCacheRows(Suite& suite) {
    int const count = suite.scaled(200'000);
    constexpr int hits = 200'000;  // also in quick runs, because processors learn shorter sequences by heart
    suite.compare("cache-hit/shim", 0.5, [=] { return caches(2000, 2000, randomAccesses(2000, hits), byShim); });
    suite.compare("cache-hit/key", 1.0, [=] { return caches(2000, 2000, randomAccesses(2000, hits), byKey); });
    suite.compare("cache-miss", 0.8, [=] { return misses(2000, count); });
    for (char const* const name : {"compiler-pages", "build-headers"}) {
        suite.compare(std::string("cache-trace/") + name, 1.0, [=, &suite] { return replays(name, suite.quick()); });
    }
    suite.compare("cache-paging", 1.2, [=, &suite] {
        QTemporaryDir folder;
        std::string const path = folder.path().toStdString();
        std::size_t const pages = static_cast<std::size_t>(suite.scaled(4096));
        return Sides{ourPaging(path, pages), plainPaging(path, pages)};
    });
    suite.compare("cache-resident-size-mode", 2.5, [=] { return residentSizeMode(2000, count); });
    for (std::size_t const keys : {10'000, 100'000, 1'000'000}) {
        if (suite.quick() && keys > 100'000) continue;
        std::string const name = "cache-keys/" + std::to_string(keys);
        int const accesses = static_cast<int>(keys);
        suite.compare(name + "-hits", 2.0, [=] { return caches(keys, keys, randomAccesses(keys, accesses), byShim); });
        suite.compare(name + "-misses", 1.0, [=] { return misses(keys, 2 * accesses); });
    }
    suite.compareGrowth("cached-keys", 1000, makeAndFind);
    suite.compareGrowth("dependents", 1000, derive<Shape::fan>);
    suite.compareGrowth("dependency-depth", 1000, derive<Shape::chain>);
}

}  // namespace bench
