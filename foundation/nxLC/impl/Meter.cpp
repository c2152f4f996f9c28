// The counting allocator and the instruction hook.
#include "foundation/nxLC/impl/Meter.h"

#include <algorithm>

#include "foundation/nxLC/impl/Binding.h"

namespace nxLC::impl {

namespace {

void onCount(lua_State* state, lua_Debug* /*event*/) {
    if (Binding* const binding = Binding::find(state)) binding->meter.tick(state);
}

}  // namespace

void Meter::attach(lua_State* state) noexcept {
    used_ = static_cast<std::size_t>(lua_gc(state, LUA_GCCOUNT, 0)) * 1024 +
            static_cast<std::size_t>(lua_gc(state, LUA_GCCOUNTB, 0));
    allocator_ = lua_getallocf(state, &allocatorData_);
    lua_setallocf(state, &Meter::allocate, this);
    lua_sethook(state, &onCount, LUA_MASKCOUNT, period);
}

void Meter::detach(lua_State* state) noexcept {
    if (allocator_) lua_setallocf(state, allocator_, allocatorData_);
}

void* Meter::allocate(void* meter, void* block, std::size_t oldSize, std::size_t newSize) {
    auto& self = *static_cast<Meter*>(meter);
    if (newSize > oldSize && newSize - oldSize > self.allowed_ - std::min(self.used_, self.allowed_)) {
        self.refused_ = true;
        return nullptr;
    }
    void* const result = self.allocator_(self.allocatorData_, block, oldSize, newSize);
    if (result || newSize == 0) self.used_ += newSize - oldSize;
    return result;
}

void Meter::enter() noexcept {
    if (depth_++ > 0) return;
    instructions_ = 0;
    refused_ = false;
    stopped_ = ended_;
    interrupted_ = false;
    if (limits_.memory == 0 || unlimited - used_ <= limits_.memory) return;
    allowed_ = used_ + limits_.memory;
    collectAt_ = allowed_ - limits_.memory / 4;
}

void Meter::end(lua_State* running) noexcept {
    ended_ = stopped_ = true;
    lua_sethook(running, &onCount, LUA_MASKCOUNT, 1);
}

void Meter::leave() noexcept {
    if (--depth_ > 0) return;
    allowed_ = collectAt_ = unlimited;
}

char const* Meter::reason() const noexcept {
    if (!stopped_) return nullptr;
    if (ended_) return "the script has ended";
    return interrupted_ ? "interrupted" : "instruction budget spent";
}

void Meter::tick(lua_State* state) {
    bool const everyInstruction = lua_gethookcount(state) == 1;
    if (!active()) {
        // Left from a call that was stopped.
        if (everyInstruction) lua_sethook(state, &onCount, LUA_MASKCOUNT, period);
        return;
    }
    if (!everyInstruction) instructions_ += period;
    stopped_ = stopped_ || interrupted_ || (limits_.instructions != 0 && instructions_ > limits_.instructions);
    if (stopped_) {
        lua_sethook(state, &onCount, LUA_MASKCOUNT, 1);
        luaL_where(state, 0);  // the hook is no function of its own
        lua_pushstring(state, reason());
        lua_concat(state, 2);
        lua_error(state);
    }
    if (everyInstruction) lua_sethook(state, &onCount, LUA_MASKCOUNT, period);
    if (used_ > collectAt_) relieve(state);
}

/// Lua collects by its own pace and fails at once when memory is refused: what is garbage goes before that.
void Meter::relieve(lua_State* state) {
    lua_gc(state, LUA_GCCOLLECT, 0);
    collectAt_ = std::max(used_, allowed_ - limits_.memory / 4) + limits_.memory / 16;
}

}  // namespace nxLC::impl
