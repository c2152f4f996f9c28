// Compares a manager with a plain model: both do the same calls and must give the same results.
#pragma once

#include <algorithm>
#include <array>
#include <list>
#include <utility>

#include "krcache/tests/TestKeys.h"

namespace urKRCache::test {

/// The expected behaviour of a manager, without graphs, tables or files: arrays, a list, and recursion.
struct PlainCache {
    static constexpr int count = 24;
    static constexpr unsigned payloadSize = 8;
    enum class State { absent, memory, paged };
    struct Entry {
        bool exists = false, isWeak = false, isSerializable = false, isRemoving = false;
        State state = State::absent;
        int locks = 0, builds = 0, held = 0, references = 0;
        unsigned expected = 0;  ///< as last reported
        unsigned bytes = 0;     ///< of the resource, now
        std::vector<int> children{}, parents{};
    };

    /// The size of the n-th resource that a key builds; `Key::none` if it builds none.
    static unsigned sizeOf(int key, int build) {
        unsigned const hash = static_cast<unsigned>(key * 7919 + build * 104729) * 2654435761U >> 8;
        if (hash % 11 == 0) return Key::none;
        return hash % 5 == 0 ? hash % 16 : hash % 6000;
    }
    static unsigned expectedSize(int key) { return key % 3 == 0 ? 3000U + static_cast<unsigned>(key) * 50 : 0; }

    void create(int key, bool isWeak, std::vector<int> const& children) {
        entries[key] = {.exists = true, .isWeak = isWeak, .expected = expectedSize(key), .children = children};
        for (int const child : children) ++entries[child].references, entries[child].parents.push_back(key);
        for (int const child : children) unref(child);
    }
    bool access(int key) {
        Entry& entry = entries[key];
        if (entry.state != State::memory) {
            makeSpace(entry.expected);
            unsigned const size = entry.state == State::paged ? entry.bytes : sizeOf(key, ++entry.builds);
            if (size == Key::none) return false;
            put(key, size);
        } else if (entry.locks == 0) {
            lru.remove(key), lru.push_back(key);
        }
        return entry.state != State::absent;
    }
    void lock(int key) {
        if (++entries[key].locks == 1) lru.remove(key);
    }
    void unlock(int key) {
        Entry& entry = entries[key];
        if (entry.locks > 0 && --entry.locks == 0 && entry.state == State::memory) lru.push_back(key);
    }
    void clear(int key) {
        Entry& entry = entries[key];
        if (entry.state != State::memory || entry.locks > 0) return;
        leave(key);
        if (entry.isSerializable && entry.expected >= payloadSize) entry.state = State::paged;
    }
    void remove(int key) {
        Entry& entry = entries[key];
        if (!entry.exists || std::exchange(entry.isRemoving, true)) return;
        if (entry.state == State::memory) leave(key);
        entry.state = State::absent;
        std::vector<int> const children = std::exchange(entry.children, {});
        std::vector<int> const parents = std::exchange(entry.parents, {});
        for (int const child : children) ++entries[child].references, std::erase(entries[child].parents, key);
        for (int const parent : parents) ++entries[parent].references, std::erase(entries[parent].children, key);
        for (int const parent : parents) remove(parent);
        for (auto list : {parents, children}) {
            for (; !list.empty(); list.pop_back()) unref(list.back());
        }
        entry.exists = false;
    }
    /// Releases a reference that is not the client's; `held` counts the client's.
    void unref(int key) { --entries[key].references, dropped(key); }
    void dropped(int key) {
        Entry const& entry = entries[key];
        int const strong = 1 + entry.held + entry.references;
        if (entry.exists && entry.isWeak && std::cmp_equal(strong, entry.parents.size())) remove(key);
    }
    void enforce(unsigned reserved = 0) {
        while (limit > 0 && used + reserved > limit && !lru.empty()) {
            int const head = lru.front();
            ++entries[head].references;
            clear(head);
            unref(head);
        }
    }

    std::array<Entry, count> entries;
    std::list<int> lru;
    std::int64_t used = 0, limit = 0;

private:
    void makeSpace(unsigned bytes) {
        if (bytes > 0) enforce(bytes);
    }
    void put(int key, unsigned size) {
        Entry& entry = entries[key];
        entry.state = State::memory;
        if (entry.locks == 0) lru.push_back(key);
        used += size;
        entry.expected = entry.bytes = size;
        enforce();
    }
    void leave(int key) {
        Entry& entry = entries[key];
        entry.state = State::absent;
        used -= std::min<std::int64_t>(entry.bytes, used);
        lru.remove(key);
    }
};

/// Makes the same random calls on a manager and on the model.
class CacheModel {
public:
    explicit CacheModel(std::function<unsigned()> draw) : draw_(std::move(draw)) {}

    /// Makes one call on both. Returns the difference, or an empty text.
    std::string step() {
        play(static_cast<int>(draw_() % PlainCache::count));
        for (int key = 0; key < PlainCache::count; ++key) {
            if (!model_.entries[key].exists) held_[key].reset(), model_.entries[key].held = 0;
        }
        return difference();
    }

private:
    using State = PlainCache::State;
    using Entry = PlainCache::Entry;

    void play(int key) {
        Manager& manager = cache_.manager;
        unsigned const what = draw_() % 32;
        if (what == 0) return limit();
        if (what == 1) return manager.startInteraction();
        if (what == 2) return manager.endInteraction();
        if (what == 3) return clearAll();
        if (what == 4) return model_.enforce(), manager.enforceMemoryLimit(draw_());
        if (what == 5 && held_[key]) return resize(key);
        if (!held_[key]) return get(key);
        ur::Reference<Shim> const& shim = held_[key];
        if (what == 14) return model_.entries[key].held = 0, model_.dropped(key), held_[key].reset();
        if (what == 6) model_.remove(key), manager.removeResource(shim);
        if (what == 7) model_.entries[key].isSerializable = true, manager.setSerializable(shim);
        if (what == 8) model_.clear(key), manager.clearResource(shim);
        if (what == 9 || what == 10) model_.lock(key), manager.lockResource(shim);
        if (what >= 11 && what <= 13) model_.unlock(key), manager.unlockResource(shim);
        if (what > 14) access(key);
        model_.dropped(key);  // the argument
    }
    void limit() {
        unsigned const drawn = draw_();
        unsigned const bytes = drawn % 8 == 0 ? 0 : 1 + drawn % (drawn % 3 == 0 ? 2'000'000 : 40'000);
        model_.limit = bytes;
        model_.enforce();
        cache_.manager.setMemoryLimit(bytes);
    }
    // The manager holds all shims meanwhile and releases them in the order of its table, which the model does not know.
    // The call is skipped when the order could matter.
    void clearAll() {
        for (Entry const& entry : model_.entries) {
            if (entry.isWeak && entry.parents.size() > 1) return;
        }
        for (int key = 0; key < PlainCache::count; ++key) model_.clear(key);
        for (int key = 0; key < PlainCache::count; ++key) model_.dropped(key);
        cache_.manager.clear();
    }
    void get(int number) {
        auto const key = number % 2 ? ur::Reference<Key>(new ElsewhereKey(number)) : ur::make<Key>(number);
        key->hash = static_cast<unsigned>(number % 7) << 20;
        key->expected = PlainCache::expectedSize(number);
        key->make = [this, key = key.get()] {
            unsigned const size = PlainCache::sizeOf(key->number, key->builds);
            Blob* const blob = size == Key::none ? nullptr : new Blob(size, payload(*key));
            return blobs_[key->number] = blob, ur::Reference<Resource>(blob);
        };
        bool const isWeak = draw_() % 3 == 0;
        if (!model_.entries[number].exists) {
            std::vector<int> children;
            for (unsigned left = draw_() % 4; left > 0; --left) {
                int const child = static_cast<int>(draw_() % PlainCache::count);
                if (child != number && held_[child]) children.push_back(child);
            }
            key->onVisit = [this, children](KeyVisitor& visitor) {
                for (int const child : children) visitor.visit(held_[child].get());
            };
            model_.create(number, isWeak, children);
        }
        model_.entries[number].held = 1;
        held_[number] = cache_.manager.getShim(key, isWeak ? Shim::WeakCounted : Shim::Retained);
        key->onVisit = [](KeyVisitor& /*visitor*/) {};
    }
    void resize(int key) {
        if (model_.entries[key].state == State::absent) return;
        blobs_[key]->size = model_.entries[key].bytes = draw_() % 6000;
    }
    static std::string payload(Key const& key) {
        std::string text = std::to_string(key.number) + ":" + std::to_string(key.builds);
        text.resize(PlainCache::payloadSize, '.');
        return text;
    }
    void access(int key) {
        bool const isThere = model_.access(key);
        auto const resource = cache_.manager.accessResource(held_[key]);
        if (isThere != !resource.null()) wrong_ = "access gives something else";
        if (model_.entries[key].state != State::memory) return;
        if (static_cast<Blob&>(*resource).payload != payload(keyOf(held_[key]))) wrong_ = "another content";
    }
    std::string difference() {
        if (!wrong_.empty()) return wrong_;
        if (auto const fault = cache_.manager.audit(); !fault.empty()) return std::string(fault.view());
        if (cache_.manager.getMemoryUsed() != model_.used) return "another number of bytes";
        if (cache_.manager.getMemoryLimit() != model_.limit) return "another limit";
        int keys = 0;
        for (int key = 0; key < PlainCache::count; ++key) {
            Entry const& entry = model_.entries[key];
            keys += entry.exists ? 1 : 0;
            if (!held_[key]) continue;
            std::string const state = entry.state == State::memory ? "m" : entry.state == State::paged ? "p" : "-";
            if (states({held_[key]}) != state + (entry.locks > 0 ? "!" : "")) return "a shim in another state";
        }
        return keys == cache_.manager.numKeys() ? "" : "another number of keys";
    }

    std::function<unsigned()> draw_;
    Cache cache_{{.tableSlots = 2, .pageExtension = 9000, .pageBlock = 5}};
    PlainCache model_;
    std::array<ur::Reference<Shim>, PlainCache::count> held_;
    std::array<Blob*, PlainCache::count> blobs_;  ///< the last one that each key built
    std::string wrong_;
};

}  // namespace urKRCache::test
