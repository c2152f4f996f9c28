// The walk over one Lua value.
#pragma once

#include <cstddef>

#include "foundation/nxLC/impl/lua.h"
#include "foundation/nxLC/walkValue.h"

namespace nxLC::impl {

/// Runs in the body of a `protect`: raises and throws.
class Walk {
public:
    Walk(lua_State* state, ValueSink& sink) noexcept;

    /// Requires: the index is positive.
    void value(int index);

private:
    void table(int index);
    void array(int index);
    void arrayOutOfOrder(int index, int known);
    void dictionary(int index);
    void topAndPop();
    [[nodiscard]] int countEntries(int index) const;

    lua_State* state_;
    ValueSink& sink_;
    std::size_t budget_;  // values still to be told
};

}  // namespace nxLC::impl
