// Creates the items of whole trees.
#pragma once

#include <new>
#include <utility>

#include "foundation/ur/NodeSource.h"
#include "foundation/ur/Reference.h"

namespace nxPLST::impl {

/// Creates items like `ur::make`, nearly always without a call. Stays on the thread that created it.
class ItemSource {
public:
    template <class Kind, class... Arguments>
    [[nodiscard]] ur::Reference<Kind> make(Arguments&&... arguments) {
        void* const node = nodes_.take<sizeof(Kind)>();
        try {
            return ur::Reference<Kind>(::new (node) Kind(std::forward<Arguments>(arguments)...));
        } catch (...) {
            ur::deallocateNode(node, sizeof(Kind));
            throw;
        }
    }

private:
    ur::NodeSource nodes_;
};

}  // namespace nxPLST::impl
