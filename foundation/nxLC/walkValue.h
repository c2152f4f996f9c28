// Lua values of any depth, told piece by piece.
#pragma once

#include <cstddef>

#include "foundation/ur/Export.h"

struct lua_State;

namespace nxLC {

/// Receives a Lua value. What it throws, derived from std::exception, reaches the caller of `walkValue`. It must not
/// raise errors of Lua, nor leave anything on the stack, except in `onOther`.
class NX_API ValueSink {
public:
    virtual void onNil() = 0;
    virtual void onBoolean(bool value) = 0;
    virtual void onNumber(double value) = 0;
    /// Also for the key of a dictionary's entry, whose value follows.
    virtual void onText(char const* bytes, std::size_t size) = 0;
    virtual void startArray() = 0;
    virtual void endArray() = 0;
    virtual void startDictionary() = 0;
    virtual void endDictionary() = 0;
    /// Is asked first about every table, function, userdata and thread. True when that was dealt with. May raise, and
    /// then has nothing that needs a destructor.
    virtual bool onOther(lua_State* state, int index) = 0;

protected:
    ~ValueSink() = default;
};

/// Tells `sink` the value at `index`; metamethods are not asked. A table with the keys 1 to n, or without any, is an
/// array, one with texts as keys a dictionary. Throws an `nxRFL::Exception` that continues "argument 1 …": for a table
/// with other keys, for what the sink does not take, for a table in itself or nested deeper than Lua's stack allows,
/// and for tables that share so many parts that the whole is out of proportion to the memory that they occupy.
NX_API void walkValue(lua_State* state, int index, ValueSink& sink);

}  // namespace nxLC
