// The walk over a joined set.
#pragma once

#include "foundation/ur/Reference.h"
#include "support/properties/impl/JoinedData.h"
#include "support/properties/impl/MemberWalk.h"

namespace nxSupport::impl {

/// Walks over the members that a joined set has when the walk is made: the transacted ones, then the untransacted.
///
/// Members that leave the set meanwhile are passed over, and those that join it are not reached, not even after
/// `rewind`. Keeps the start property and both data objects alive.
class JoinedPropertyIterator {
public:
    enum class Start : bool { include, skip };

    JoinedPropertyIterator(Property const& start, Start handling);
    JoinedPropertyIterator(JoinedPropertyIterator const&) = delete;
    JoinedPropertyIterator& operator=(JoinedPropertyIterator const&) = delete;

    [[nodiscard]] bool valid() const noexcept { return txd_.valid() || untxd_.valid(); }
    /// Requires: `valid()`.
    [[nodiscard]] ur::Reference<Property> current() const noexcept;
    void next() noexcept;
    /// Back to the first member, with or without the start property.
    void rewind(Start handling) noexcept;

    /// Whether the start property still belongs to the set that is walked.
    [[nodiscard]] bool isCurrent() const noexcept;

private:
    void passOver() noexcept;

    ur::Reference<Property const> start_;
    Start handling_;
    MemberWalk<TxdPropertyData> txd_;
    MemberWalk<UnTxdPropertyData> untxd_;
};

}  // namespace nxSupport::impl
