// Implements the counting allocator and the instruction hook.
#include "foundation/nxLC/impl/Meter.h"

#include <algorithm>
#include <cstdlib>

#include "foundation/nxLC/impl/Binding.h"
#include "foundation/nxLC/impl/processorTime.h"

namespace nxLC::impl {

using ur::Account;

namespace {

void onCount(lua_State* state, lua_Debug* /*event*/) {
    if (Binding* const binding = Binding::find(state)) binding->meter.tick(state);
}

int collectAll(lua_State* state) {
    lua_gc(state, LUA_GCCOLLECT, 0);
    return 0;
}

/// The sum, or the largest number on overflow.
std::size_t sum(std::size_t a, std::size_t b) noexcept {
    return b > Account::unlimited - a ? Account::unlimited : a + b;
}

}  // namespace

void Meter::attach(lua_State* state) noexcept {
    size_ = static_cast<std::size_t>(lua_gc(state, LUA_GCCOUNT, 0)) * 1024 +
            static_cast<std::size_t>(lua_gc(state, LUA_GCCOUNTB, 0));
    account_->changeScript(size_);
    allocator_ = lua_getallocf(state, &allocatorData_);
    lua_setallocf(state, &Meter::allocate, this);
    lua_sethook(state, &onCount, LUA_MASKCOUNT, period);
}

void Meter::detach(lua_State* state) noexcept {
    if (!allocator_) return;
    lua_setallocf(state, allocator_, allocatorData_);
    account_->changeScript(0 - size_);
}

void* Meter::allocate(void* meter, void* block, std::size_t oldSize, std::size_t newSize) {
    auto& self = *static_cast<Meter*>(meter);
    if (newSize > oldSize && !self.grants(newSize - oldSize)) return nullptr;
    void* const result = self.allocator_(self.allocatorData_, block, oldSize, newSize);
    if (result || newSize == 0) {
        self.size_ += newSize - oldSize;
        self.account_->changeScript(newSize - oldSize);
    }
    return result;
}

bool Meter::grants(std::size_t bytes) noexcept {
    if (!account_->allows(bytes)) {
        refused_ = true;
        return false;
    }
    if (bytes < largeBlock) [[likely]]
        return true;
    spendBytes(bytes);
    return bytes < hugeBlock || !mustStop();
}

/// Combines `bounds` with the limits of a call.
Account::Bounds Meter::bounded(Account::Bounds bounds) noexcept {
    bounds.collector = this;
    std::size_t const used = account_->used();
    auto const tighten = [&](std::size_t allowed, std::size_t collectAt, std::size_t limit) {
        bounds.allowed = std::min(bounds.allowed, allowed);
        bounds.collectAt = std::min(bounds.collectAt, collectAt);
        bounds.step = std::min(bounds.step, limit / 16);
    };
    if (std::size_t const limit = limits_.memory) tighten(sum(used, limit), sum(used, limit - limit / 4), limit);
    if (std::size_t const limit = limits_.totalMemory) {
        // Not at every call if nearly all memory is in use all the time.
        collected_ = std::min(collected_, sum(used, limit / 16));
        tighten(limit, std::max(limit - limit / 4, collected_), limit);
    }
    return bounds;
}

void Meter::enter() noexcept {
    if (depth_++ > 0) return;
    instructions_ = 0;
    if (limits_.instructions != 0) began_ = Clock::now();
    processorTime_.reset();
    refused_ = false;
    stopped_ = ended_;
    interrupted_ = false;
    outer_ = account_->bounds();
    account_->setBounds(bounded(outer_));
    relieve(running_);  // frees the remains of earlier calls
}

void Meter::end(lua_State* running) noexcept {
    ended_ = stopped_ = true;
    lua_sethook(running, &onCount, LUA_MASKCOUNT, 1);
}

void Meter::leave() noexcept {
    if (--depth_ > 0) return;
    collected_ = account_->bounds().collectAt;
    account_->setBounds(outer_);
}

char const* Meter::reason() const noexcept {
    if (!stopped_) return nullptr;
    if (ended_) return "the script has ended";
    return interrupted_ ? "interrupted" : "instruction budget spent";
}

void Meter::spendOrThrow(std::uint64_t instructions) {
    spend(instructions);
    if (mustStop()) throw nxRFL::Exception(reason());
}

void Meter::tick(lua_State* state) {
    int const ran = lua_gethookcount(state);
    if (!active()) {
        // Remains from a call that was stopped.
        if (ran == 1) lua_sethook(state, &onCount, LUA_MASKCOUNT, period);
        return;
    }
    stopped_ = stopped_ || isTimeSpent();
    count(state, state, wasSlow() ? slowPeriod : ran == 1 ? period : std::min(2 * ran, period));
    relieve(state);
}

/// Time in which the thread sleeps does not count. The processor's clock is slow to read, so it is read only after half
/// of the allowed time has passed by the usual clock.
bool Meter::isTimeSpent() noexcept {
    constexpr std::uint64_t longest = std::uint64_t(1) << 50U;  // some decades
    if (limits_.instructions == 0 || limits_.instructions > longest) return false;
    std::chrono::nanoseconds const half = std::chrono::nanoseconds(500) * limits_.instructions;
    if (Clock::now() - began_ < half) return false;
    std::chrono::nanoseconds const now = processorTime();
    if (!processorTime_) processorTime_ = now;
    return now - *processorTime_ > half;
}

bool Meter::wasSlow() noexcept {
    Clock::time_point const now = Clock::now();
    return now - std::exchange(ticked_, now) > longPeriod;
}

void Meter::begin(lua_State* state, lua_State* coroutine) {
    if (active()) count(state, coroutine, firstPeriod);
}

/// Counts the instructions that `thread` may run until its hook fires.
void Meter::count(lua_State* state, lua_State* thread, int instructions) {
    instructions_ += static_cast<std::uint64_t>(instructions);
    if (mustStop()) stop(state);
    lua_sethook(thread, &onCount, LUA_MASKCOUNT, instructions);
}

void Meter::stop(lua_State* state) {
    lua_sethook(state, &onCount, LUA_MASKCOUNT, 1);
    luaL_where(state, 0);  // the hook is not a function of its own
    lua_pushstring(state, reason());
    lua_concat(state, 2);
    lua_error(state);
    std::abort();  // not reached
}

/// Lua collects at its own pace and fails at once when memory is refused, so this collects garbage before. An error
/// comes from a finalizer of the host; then some garbage stays.
void Meter::collect(lua_State* state) noexcept {
    if (collecting_ || !active()) return;
    collecting_ = true;
    Account::Bounds const bounds = account_->bounds();
    account_->setBounds({});  // collecting itself takes a little memory
    if (lua_cpcall(state, &collectAll, nullptr) != 0) lua_pop(state, 1);
    account_->setBounds(bounds);
    account_->noteCollection();
    collecting_ = false;
}

}  // namespace nxLC::impl
