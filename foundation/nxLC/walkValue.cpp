// Distinguishes arrays from dictionaries, and bounds the cost of hostile tables.
#include "foundation/nxLC/walkValue.h"

#include <utility>

#include "foundation/nxLC/impl/Binding.h"
#include "foundation/nxLC/impl/lua.h"
#include "foundation/nxLC/protect.h"

namespace nxLC {

namespace {

constexpr std::size_t bytesOfValue = 16;
/// The meter counts so many values at once: counting each alone takes a tenth longer.
constexpr std::size_t settledAtOnce = 64;

/// The walk over one Lua value. Runs in the body of a `protect`: raises and throws.
class Walk {
public:
    Walk(lua_State* state, ValueSink& sink) noexcept;

    /// Visits the whole value. Requires: the index is positive.
    void run(int index) {
        value(index);
        settle();
    }

private:
    /// Counts values. Fails if they exceed the budget, or the script must end.
    void spend(std::size_t values) {
        if (values > budget_) [[unlikely]]
            repeat(values);
        budget_ -= values;
        unsettled_ += values;
        if (unsettled_ >= settledAtOnce) settle();
    }
    void repeat(std::size_t values);
    void settle();
    void value(int index);
    void text(int index);
    void table(int index);
    void array(int index);
    void arrayOutOfOrder(int index, int known);
    void dictionary(int index);
    void topAndPop();
    [[nodiscard]] int countEntries(int index) const;

    lua_State* state_;
    ValueSink& sink_;
    impl::Meter* meter_;         ///< null for an unbound state
    std::size_t budget_;         ///< the number of values still allowed
    std::size_t unsettled_ = 0;  ///< values counted here that the meter has not counted yet
    bool isRepeating_ = false;
};

[[noreturn]] void fail(char const* complaint) { throw nxRFL::Exception(complaint); }

constexpr char const* wrongKeys = "is a table whose keys are neither 1 to n nor all strings";

Walk::Walk(lua_State* state, ValueSink& sink) noexcept : state_(state), sink_(sink) {
    impl::Binding* const binding = impl::Binding::find(state);
    meter_ = binding ? &binding->meter : nullptr;
    // Values that are visited once fit into the state's memory, where a value takes 16 bytes or more.
    budget_ = static_cast<std::size_t>(lua_gc(state, LUA_GCCOUNT, 0)) * 1024 / bytesOfValue;
}

/// Shared parts are visited at every occurrence; this bounds their number.
void Walk::repeat(std::size_t values) {
    if (!std::exchange(isRepeating_, true)) {
        budget_ += meter_ ? meter_->limits().repeatedValues : Limits().repeatedValues;
    }
    if (values > budget_) fail("is a table with itself in it, or with parts that it holds too often");
}

void Walk::settle() {
    if (meter_) meter_->spendOrThrow(std::exchange(unsettled_, 0));
}

void Walk::text(int index) {
    std::size_t size = 0;
    char const* const text = lua_tolstring(state_, index, &size);
    spend(size / bytesOfValue);
    sink_.onText(text, size);
}

void Walk::value(int index) {
    spend(1);
    switch (lua_type(state_, index)) {
        case LUA_TNIL: return sink_.onNil();
        case LUA_TBOOLEAN: return sink_.onBoolean(lua_toboolean(state_, index) != 0);
        case LUA_TNUMBER: return sink_.onNumber(lua_tonumber(state_, index));
        case LUA_TSTRING: return text(index);
        case LUA_TTABLE:
            if (!sink_.onOther(state_, index)) table(index);
            return;
        default:
            if (!sink_.onOther(state_, index)) {
                lua_pushfstring(state_, "must not be a %s", luaL_typename(state_, index));
                fail(lua_tostring(state_, -1));
            }
    }
}

void Walk::table(int index) {
    if (!lua_checkstack(state_, 6)) fail("is a table with itself in it, or nested too deeply");
    lua_pushnil(state_);
    if (!lua_next(state_, index)) {
        sink_.startArray();
        return sink_.endArray();
    }
    int const firstKey = lua_type(state_, -2);
    if (firstKey == LUA_TNUMBER) {
        array(index);
    } else if (firstKey == LUA_TSTRING) {
        dictionary(index);
    } else {
        fail(wrongKeys);
    }
}

void Walk::topAndPop() {
    value(lua_gettop(state_));
    lua_pop(state_, 1);
}

/// The first key and value are on top.
void Walk::array(int index) {
    sink_.startArray();
    int count = 0;
    do {
        if (lua_type(state_, -2) != LUA_TNUMBER || lua_tonumber(state_, -2) != count + 1) {
            lua_pop(state_, 2);
            arrayOutOfOrder(index, count);
            break;
        }
        ++count;
        topAndPop();
    } while (lua_next(state_, index));
    sink_.endArray();
}

/// Lua enumerates the elements after the first `known` ones in an order other than by key.
void Walk::arrayOutOfOrder(int index, int known) {
    int count = known;
    for (;;) {
        lua_rawgeti(state_, index, count + 1);
        if (lua_isnil(state_, -1)) break;
        ++count;
        topAndPop();
    }
    lua_pop(state_, 1);
    if (countEntries(index) != count) fail(wrongKeys);
}

int Walk::countEntries(int index) const {
    int count = 0;
    for (lua_pushnil(state_); lua_next(state_, index); lua_pop(state_, 1)) ++count;
    return count;
}

/// The first key and value are on top.
void Walk::dictionary(int index) {
    sink_.startDictionary();
    do {
        if (lua_type(state_, -2) != LUA_TSTRING) fail(wrongKeys);
        text(-2);
        topAndPop();
    } while (lua_next(state_, index));
    sink_.endDictionary();
}

}  // namespace

void walkValue(lua_State* state, int index, ValueSink& sink) {
    lua_pushvalue(state, index);
    protect(state, 1, 0, [&sink](lua_State* inner) {
        Walk(inner, sink).run(1);
        return 0;
    });
}

}  // namespace nxLC
