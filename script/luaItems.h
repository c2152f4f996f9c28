// Property lists as Lua values, and back.
#pragma once

#include "foundation/ur/Export.h"
#include "plst/Item.h"

struct lua_State;

namespace nxSupport {

/// Pushes booleans and numbers as such, texts up to their first NUL, arrays and dictionaries as tables; an element of
/// no kind as nil. Pushes nothing for a null item, an item of no kind, one that is nested thousands of levels
/// deep, or without memory. Raises no errors of Lua.
NX_API void pushPListItem(lua_State* state, ur::Reference<nxPLST::Item const> item);

/// The item form of the value at `index`, which is positive; the value stays. A table without entries or with the keys
/// 1 to n is an array, one with texts as keys a dictionary; texts and keys end at their first NUL. Null for everything
/// else: nil, functions, userdata, threads, tables with other keys or with a value that has no item form, tables in
/// themselves or nested thousands of levels deep. Raises no errors of Lua.
[[nodiscard]] NX_API ur::Reference<nxPLST::Item const> popPListItem(lua_State* state, int index);

}  // namespace nxSupport
