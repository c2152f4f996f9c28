// Applies random calls to an ordered map and to std::map, with audits.
#pragma once

#include <functional>
#include <map>
#include <new>
#include <ostream>
#include <string>
#include <utility>

#include "foundation/ur/containers.h"
#include "foundation/ur/tests/MapAudit.h"

namespace ur::test {

/// A counted key whose copies can be made to fail. Moved-from keys differ from all others.
struct MapKey {
    MapKey(int number) : value(number) { ++alive; }  // NOLINT(google-explicit-constructor): written as a number
    MapKey(MapKey const& other) : value(other.value) {
        if (copiesLeft-- == 0) throw std::bad_alloc();
        ++alive;
    }
    MapKey(MapKey&& other) noexcept : value(std::exchange(other.value, movedFrom)) { ++alive; }
    MapKey& operator=(MapKey other) noexcept {  // NOLINT(performance-unnecessary-value-param): counts as a copy
        value = other.value;
        return *this;
    }
    ~MapKey() { --alive; }

    friend bool operator<(MapKey const& a, MapKey const& b) { return a.value < b.value; }
    friend bool operator==(MapKey const& a, MapKey const& b) { return a.value == b.value; }
    friend std::ostream& operator<<(std::ostream& out, MapKey const& key) { return out << key.value; }

    static constexpr int movedFrom = -1000000;
    /// The number of copies that succeed before one fails; negative means no limit.
    static inline int copiesLeft = -1;
    static inline long alive = 0;

    int value;
};

/// Plays on maps with `blockSize` entries per block and `fanOut` children per branch.
template <std::uint32_t blockSize, std::uint32_t fanOut>
class MapPlay {
public:
    using Map = BlockMap<MapKey, std::string, less<MapKey>, blockSize, fanOut>;
    using Audit = impl::MapAudit<Map>;

    /// Keys lie below `keys`.
    MapPlay(std::function<unsigned()> draw, unsigned keys) : draw_(std::move(draw)), keys_(keys) {}

    /// Makes the next call and returns the differences; empty when there are none. Does not check the whole map.
    std::string step() {
        int const key = below(keys_);
        int const kind = below(32);
        if (below(4 * keys_) == 0) growing_ = !growing_;
        if (kind < 12) return growing_ ? insert(key) : erase(key);
        if (kind < 17) return growing_ ? erase(key) : insert(key);
        if (kind < 24) return compare(map_.find(key), model_.find(key));
        if (kind < 27) return compare(map_.lower_bound(key), model_.lower_bound(key));
        if (kind < 30) return compare(map_.upper_bound(key), model_.upper_bound(key));
        return kind == 30 ? eraseRun(key) : replaceWhole();
    }
    /// The faults of the map; empty when there are none.
    std::string audit() const {
        std::string faults = Audit::faults(map_);
        if (!faults.empty()) return faults;
        if (map_.size() != model_.size()) return "another number of entries";
        auto at = map_.begin();
        for (auto const& [key, value] : model_) {
            if (at->first.value != key || at->second != value) return "another entry at " + std::to_string(key);
            ++at;
        }
        return {};
    }
    [[nodiscard]] Map const& map() const { return map_; }

private:
    std::string insert(int key) {
        std::string const value = "the text number " + std::to_string(++texts_) + ", which is long";
        bool const isNew = !model_.contains(key);
        int const way = below(9);
        if (way == 8 && !model_.empty() && key <= model_.rbegin()->first) return {};
        auto const [at, saidNew] = insertBy(way, key, value, isNew);
        if (isNew || (way >= 4 && way < 8)) model_[key] = value;
        return saidNew == isNew ? compare(at, model_.find(key)) : "told wrongly whether the key was new";
    }
    std::pair<typename Map::iterator, bool> insertBy(int way, int key, std::string const& value, bool isNew) {
        switch (way) {
            case 0: return map_.try_emplace(key, value);
            case 1: return map_.insert({key, value});
            case 2: return {map_.emplace_hint(map_.lower_bound(key), key, value), isNew};
            case 3: return {map_.emplace_hint(map_.lower_bound(below(keys_)), key, value), isNew};
            case 4: return map_.insert_or_assign(key, value);
            case 5: map_[key] = value; break;
            case 6:
            case 7: map_.ascending(key) = value; break;
            default: return {map_.emplaceLast(key, value), isNew};
        }
        return {map_.find(key), isNew};
    }
    std::string erase(int key) { return map_.erase(key) == model_.erase(key) ? "" : "erased something else"; }
    std::string eraseRun(int key) {
        auto at = map_.lower_bound(key);
        auto expected = model_.lower_bound(key);
        for (int left = below(2 * blockSize); left > 0 && expected != model_.end(); --left) {
            at = map_.erase(at);
            expected = model_.erase(expected);
        }
        return compare(at, expected);
    }
    std::string replaceWhole() {
        int const way = below(4);
        if (way == 0) map_ = Map(std::as_const(map_));
        if (way == 1) map_.reserve(below(2 * blockSize));
        if (way == 2) {
            Map taken(std::move(map_));
            if (!map_.empty() || map_.begin() != map_.end()) return "something is left behind";
            map_.swap(taken);
        }
        if (way < 3) return {};
        std::size_t dropped = 0;
        map_.clear([&](std::string const&) { ++dropped; });
        std::size_t const expected = std::exchange(model_, {}).size();
        return dropped == expected ? "" : "dropped another number of values";
    }
    std::string compare(typename Map::iterator at, std::map<int, std::string>::iterator expected) {
        if ((at == map_.end()) != (expected == model_.end())) return "found where nothing is, or not found";
        bool const same =
            expected == model_.end() || (at->first.value == expected->first && at->second == expected->second);
        return same ? std::string() : "found another entry";
    }
    int below(unsigned limit) { return static_cast<int>(draw_() % limit); }

    std::function<unsigned()> draw_;
    unsigned keys_;
    bool growing_ = true;
    int texts_ = 0;
    Map map_;
    std::map<int, std::string> model_;
};

}  // namespace ur::test
