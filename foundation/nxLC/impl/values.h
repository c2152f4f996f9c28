// Converts values between Lua and reflection stacks.
#pragma once

#include "foundation/nxLC/impl/Binding.h"
#include "foundation/nxRFL/Writer.h"

namespace nxLC::impl {

/// A text that leaves a frame whose objects have destructors.
struct ShortText {
    static constexpr std::size_t capacity = 256;
    std::size_t size;
    char bytes[capacity];
};

/// The outcome of a call: the number of results on the stack, or one of these.
enum Outcome : int {
    raisedOutcome = -1,     ///< the error is on top of the stack
    shortTextOutcome = -2,  ///< the only result is a short text
    shortErrorOutcome = -3  ///< the short text is the error
};

/// Appends the values on a Lua function's stack as arguments of `function`, valid during the call.
void readArguments(Binding& binding, lua_State* state, nxRFL::Function const& function, nxRFL::Stack& stack);
/// Appends the Lua values from `first` up to the top.
void readValues(Binding& binding, lua_State* state, int first, nxRFL::Stack& stack);

/// Pushes the result of a call.
int pushText(Binding& binding, lua_State* state, urString::CString const& result, ShortText& text);
/// Pushes the results of a call.
int pushResults(Binding& binding, lua_State* state, nxRFL::Stack const& results, ShortText& text);
/// Pushes the elements of the single result, an array, as separate values.
int pushElements(Binding& binding, lua_State* state, nxRFL::Stack const& results);

/// Pushes all items. For bodies: raises and throws.
int pushItems(Binding& binding, lua_State* state, nxRFL::Stack const& items);

/// Ends a function that Lua called and whose outcome is not a number of results.
int finish(lua_State* state, int outcome, ShortText const& text);
/// Ends a function that Lua called, after all objects with destructors are gone.
inline int complete(lua_State* state, int outcome, ShortText const& text) {
    return outcome >= 0 ? outcome : finish(state, outcome, text);
}

}  // namespace nxLC::impl
