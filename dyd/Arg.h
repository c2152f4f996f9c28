// An argument or a result of a dynamic call.
#pragma once

#include <cstddef>
#include <utility>

#include "foundation/ur/Export.h"
#include "foundation/ur/NodeHeap.h"
#include "foundation/ur/Reference.h"
#include "foundation/ur/ReferenceCount.h"
#include "plst/Item.h"

namespace nxDYD {

/// Holds an item, or null for no value. The item is shared, not copied.
class NX_API Arg : public ur::ReferenceCount, public ur::NodeAllocated {
public:
    Arg() noexcept = default;
    explicit Arg(ur::Reference<nxPLST::Item const> item) noexcept : item_(std::move(item)) {}
    Arg(Arg const&) noexcept = default;
    Arg& operator=(Arg const&) noexcept = default;
    ~Arg() override = default;

    [[nodiscard]] ur::Reference<nxPLST::Item const> item() const noexcept { return item_; }

private:
    ur::Reference<nxPLST::Item const> item_;
};

}  // namespace nxDYD
