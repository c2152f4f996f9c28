// How far a script's walk has come.
#pragma once

#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

#include "foundation/ur/Account.h"
#include "foundation/ur/Export.h"
#include "foundation/urString/CString.h"

namespace nxRFL {

/// The place of one `for` loop of a script in what it walks over. Made by an iterator's begin function for the script,
/// which keeps the object walked over alive, and deleted when the script is done with it.
class NX_API IteratorState {
public:
    IteratorState() = default;
    IteratorState(IteratorState const&) = delete;
    IteratorState& operator=(IteratorState const&) = delete;
    virtual ~IteratorState() = default;

    /// There is a current entry.
    [[nodiscard]] virtual bool valid() const = 0;
    /// Goes on to the next entry. Requires: valid.
    virtual void advance() = 0;
    /// For states that own more than a few bytes: charges them from now on.
    virtual void chargeTo(std::shared_ptr<ur::Account> const& /*account*/) {}
};

/// Walks over a map in key order, and goes on behind the key last seen when the map has changed meanwhile.
template <class Map>
class MapIteratorState : public IteratorState {
public:
    /// The map outlives the walk.
    explicit MapIteratorState(Map const& map) : map_(map) { keep(map.begin()); }

    [[nodiscard]] bool valid() const override { return current_.has_value(); }
    void advance() override { keep(map_.upper_bound(current_->first)); }
    /// A copy of the entry, as it was when the walk came to it. Requires: valid.
    [[nodiscard]] auto const& current() const { return *current_; }
    void chargeTo(std::shared_ptr<ur::Account> const& account) override {
        charge_ = ur::Charge(account, sizeof(MapIteratorState) + bytesOfCurrent());
    }

private:
    using Entry = std::pair<typename Map::key_type, typename Map::mapped_type>;

    void keep(typename Map::const_iterator at) {
        if (at == map_.end()) {
            current_.reset();
        } else {
            current_.emplace(at->first, at->second);
        }
        charge_.set(sizeof(MapIteratorState) + bytesOfCurrent());
    }
    template <class T>
    [[nodiscard]] static std::size_t ownedBytes([[maybe_unused]] T const& part) noexcept {
        if constexpr (std::is_same_v<T, urString::CString>) return part.size();
        return 0;
    }
    [[nodiscard]] std::size_t bytesOfCurrent() const noexcept {
        return current_ ? ownedBytes(current_->first) + ownedBytes(current_->second) : 0;
    }

    Map const& map_;
    std::optional<Entry> current_;
    ur::Charge charge_;
};

}  // namespace nxRFL
