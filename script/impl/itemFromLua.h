// Builds items whose memory counts with that of the script.
#pragma once

#include <memory>

#include "foundation/ur/Account.h"
#include "plst/Item.h"

struct lua_State;

namespace nxSupport::impl {

/// Null if the state is not bound.
[[nodiscard]] std::shared_ptr<ur::Account> accountOf(lua_State* state);

/// As `popPListItem`, but adds the items' bytes to `charge`, and throws what `nxLC::walkValue` throws, or
/// `ur::BudgetSpent`. Null for nil.
[[nodiscard]] ur::Reference<nxPLST::Item const> itemFromLua(lua_State* state, int index, ur::Charge& charge);

}  // namespace nxSupport::impl
