// Walks over a joined set.
#pragma once

#include "support/properties/impl/JoinedData.h"
#include "support/properties/impl/MemberWalk.h"
#include "support/properties/impl/PropertyHold.h"

namespace nxSupport::impl {

/// Walks over the members that a joined set has when the walk begins: the transacted ones, then the untransacted.
///
/// Skips members that leave the set meanwhile, and reaches members that join it only in the next `forEach`. Keeps the
/// start property and both data objects alive, but not the current member.
class JoinedPropertyIterator {
public:
    enum class Start : bool { include, skip };

    JoinedPropertyIterator(Property const& start, Start handling)
        : JoinedPropertyIterator(start, handling, JoinedData(start)) {}
    JoinedPropertyIterator(JoinedPropertyIterator const&) = delete;
    JoinedPropertyIterator& operator=(JoinedPropertyIterator const&) = delete;

    [[nodiscard]] bool valid() const noexcept { return current_ != nullptr; }
    /// Requires: `valid()`.
    [[nodiscard]] Property& current() const noexcept { return *current_; }
    void next() noexcept {
        txd_.valid() ? txd_.next() : untxd_.next();
        settle();
    }
    /// Visits all members from the first one, with or without the start property.
    template <class Visit>
    void forEach(Start handling, Visit visit) {
        Property const* const skipped = handling == Start::skip ? &start_.property() : nullptr;
        txd_.rewind();
        untxd_.rewind();
        for (; txd_.valid(); txd_.next()) {
            TxdProperty* const member = txd_.member();
            if (member && member != skipped && takesPart(*member)) visit(*member);
        }
        for (; untxd_.valid(); untxd_.next()) {
            UnTxdProperty* const member = untxd_.member();
            if (member && member != skipped) visit(*member);
        }
    }

    /// Whether the walked set is still the start property's set and has the same two sides.
    [[nodiscard]] bool isCurrent() const noexcept {
        JoinedData const shared(start_.property());
        return shared.txd == txd_.data() && shared.untxd == untxd_.data();
    }

private:
    JoinedPropertyIterator(Property const& start, Start handling, JoinedData const& shared)
        : start_(start), skipped_(handling == Start::skip ? &start : nullptr), txd_(shared.txd), untxd_(shared.untxd) {
        settle();
    }

    void settle() noexcept {
        for (; txd_.valid(); txd_.next()) {
            TxdProperty* const member = txd_.member();
            current_ = member;
            if (member && member != skipped_ && takesPart(*member)) return;
        }
        for (; untxd_.valid(); untxd_.next()) {
            current_ = untxd_.member();
            if (current_ && current_ != skipped_) return;
        }
        current_ = nullptr;
    }

    // After undo, a list may contain properties that moved away unrecorded or that no reference holds any more. These
    // are not members.
    [[nodiscard]] bool takesPart(TxdProperty const& member) const noexcept {
        return member.data() == txd_.data() && (!txd_.data()->members().mayContainStale() || member.isTxnExtant());
    }

    PropertyHold start_;
    Property const* const skipped_;
    Property* current_ = nullptr;
    MemberWalk<TxdPropertyData> txd_;
    MemberWalk<UnTxdPropertyData> untxd_;
};

}  // namespace nxSupport::impl
