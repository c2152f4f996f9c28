// Walks Lua values of any depth.
#pragma once

#include <cstddef>

#include "foundation/ur/Export.h"

struct lua_State;

namespace nxLC {

/// Receives a Lua value. Exceptions that it throws, derived from std::exception, reach the caller of `walkValue`. It
/// must not raise Lua errors or leave anything on the stack, except in `onOther`.
class NX_API ValueSink {
public:
    virtual void onNil() = 0;
    virtual void onBoolean(bool value) = 0;
    virtual void onNumber(double value) = 0;
    /// Also called for the key of a dictionary entry; its value follows.
    virtual void onText(char const* bytes, std::size_t size) = 0;
    virtual void startArray() = 0;
    virtual void endArray() = 0;
    virtual void startDictionary() = 0;
    virtual void endDictionary() = 0;
    /// Called first for every table, function, userdata and thread. True when it has handled the value. May raise, if
    /// it then has nothing that needs a destructor.
    virtual bool onOther(lua_State* state, int index) = 0;

protected:
    ~ValueSink() = default;
};

/// Passes the value at `index` to `sink`, without calling metamethods. A table with the keys 1 to n, or without keys,
/// is an array; one with text keys is a dictionary. Throws an `nxRFL::Exception` that continues "argument 1 …" for a
/// table with other keys, a value that the sink rejects, a table inside itself or nested deeper than Lua's stack
/// allows, and tables whose shared parts expand far beyond the memory that they occupy. Each value counts as an
/// instruction of the running script, each 16 bytes of text as another; if the script must end, the exception is the
/// reason.
NX_API void walkValue(lua_State* state, int index, ValueSink& sink);

}  // namespace nxLC
