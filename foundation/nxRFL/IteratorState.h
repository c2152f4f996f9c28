// The state of a script's iteration.
#pragma once

#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

#include "foundation/ur/Account.h"
#include "foundation/ur/Export.h"
#include "foundation/urString/CString.h"

namespace nxRFL {

/// The position of one `for` loop of a script. An iterator's begin function creates it for the script, which keeps the
/// iterated object alive and deletes the state when it is done.
class NX_API IteratorState {
public:
    IteratorState() = default;
    IteratorState(IteratorState const&) = delete;
    IteratorState& operator=(IteratorState const&) = delete;
    virtual ~IteratorState() = default;

    /// Whether there is a current entry.
    [[nodiscard]] virtual bool valid() const = 0;
    /// Advances to the next entry. Requires: valid.
    virtual void advance() = 0;
    /// For states that own more than a few bytes: charges those bytes from now on.
    virtual void chargeTo(std::shared_ptr<ur::Account> const& /*account*/) {}
};

/// Iterates over a map in key order. If the map changes, continues after the last key seen.
template <class Map>
class MapIteratorState : public IteratorState {
public:
    /// The map must outlive this state.
    explicit MapIteratorState(Map const& map) : map_(map) { keep(map.begin()); }

    [[nodiscard]] bool valid() const override { return current_.has_value(); }
    void advance() override { keep(map_.upper_bound(current_->first)); }
    /// A copy of the entry, made when the iteration reached it. Requires: valid.
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
