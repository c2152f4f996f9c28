// Converts property lists to Lua values and back.
#pragma once

#include "foundation/ur/Export.h"
#include "plst/Item.h"

struct lua_State;

namespace nxSupport {

/// Pushes booleans and numbers as such, texts up to their first NUL, arrays and dictionaries as tables; an element of
/// no known type as nil. Pushes nothing for a null item, an item of no known type, an item nested thousands of levels
/// deep, or if memory runs out. Raises no Lua errors.
NX_API void pushPListItem(lua_State* state, ur::Reference<nxPLST::Item const> item);

/// Returns the item form of the value at `index`, which must be positive; the value stays on the stack. A table that is
/// empty or has the keys 1 to n is an array; one with only texts as keys is a dictionary; texts and keys end at their
/// first NUL. Returns null for everything else: nil, functions, userdata, threads, tables with other keys or with a
/// value without item form, tables that contain themselves or are nested thousands of levels deep. Raises no Lua
/// errors.
[[nodiscard]] NX_API ur::Reference<nxPLST::Item const> popPListItem(lua_State* state, int index);

}  // namespace nxSupport
