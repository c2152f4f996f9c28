// Counting what a script uses, and stopping it.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include "foundation/nxLC/Limits.h"
#include "foundation/nxLC/impl/lua.h"
#include "foundation/ur/Account.h"

namespace nxLC::impl {

/// Watches one state: every allocation goes through it to the account, and hooks report instructions.
///
/// Each thread of Lua counts for itself, and its hook strikes after so many of its own instructions. So instructions
/// are counted ahead, when a thread begins and whenever its hook strikes: few at first, since most coroutines are
/// short, and a thousand at a time in the end. What all threads together have run is never more than what was counted.
///
/// A script whose instructions are used up, or that is interrupted, gets an error at every further instruction of its
/// thread, so that catching the error does not help it. Memory that is refused is Lua's ordinary error.
class Meter final : private ur::Account::Collector {
public:
    static constexpr int period = 1000;     ///< most instructions between two looks
    static constexpr int firstPeriod = 50;  ///< of a coroutine

    /// `running` is the thread to collect on.
    Meter(std::shared_ptr<ur::Account> account, lua_State* const& running) noexcept
        : account_(std::move(account)), running_(running) {}
    Meter(Meter const&) = delete;
    Meter& operator=(Meter const&) = delete;

    /// Puts itself between the state and its allocator. Lasts until `detach`, and for states of all its threads.
    void attach(lua_State* state) noexcept;
    void detach(lua_State* state) noexcept;

    void setLimits(Limits const& limits) noexcept { limits_ = limits; }
    [[nodiscard]] Limits const& limits() const noexcept { return limits_; }

    /// A call into the script begins or ends. Calls nest; the outermost one is measured.
    void enter() noexcept;
    void leave() noexcept;
    [[nodiscard]] bool active() const noexcept { return depth_ > 0; }

    /// Safe in signal handlers and on any thread.
    void interrupt() noexcept { interrupted_.store(true, std::memory_order_relaxed); }

    /// Ends the script that runs and has called native code from `running`, and every later one at its beginning.
    void end(lua_State* running) noexcept;
    [[nodiscard]] bool ended() const noexcept { return ended_; }

    /// The script is to end: its instructions are used up, it was interrupted, or all have ended.
    [[nodiscard]] bool stopped() const noexcept { return stopped_; }
    /// Why, or null.
    [[nodiscard]] char const* reason() const noexcept;
    /// An allocation was refused since the outermost call began.
    [[nodiscard]] bool memoryRefused() const noexcept { return refused_; }

    /// The instructions counted ahead for `state` have run. May raise.
    void tick(lua_State* state);
    /// A coroutine has been made, by the thread `state`. May raise.
    void begin(lua_State* state, lua_State* coroutine);
    /// The script is to end, now that native code has counted.
    [[nodiscard]] bool mustStop() noexcept {
        if (active()) stopped_ = stopped_ || interrupted_ || isSpent();
        return active() && stopped_;
    }
    /// Counts work that a native function does, such as values that it copies. Never raises.
    void spend(std::uint64_t instructions) noexcept { instructions_ += instructions; }

    /// Frees what only garbage holds, when there is much of it. Never raises. Only where nothing native is half done.
    void relieve(lua_State* state) noexcept {
        if (account_->wantsCollection()) [[unlikely]]
            collect(state);
    }

private:
    static void* allocate(void* meter, void* block, std::size_t oldSize, std::size_t newSize);
    void collect() noexcept override { collect(running_); }
    void collect(lua_State* state) noexcept;
    [[nodiscard]] ur::Account::Bounds bounded(ur::Account::Bounds bounds) noexcept;
    void count(lua_State* state, lua_State* thread, int instructions);
    [[nodiscard]] bool isSpent() const noexcept {
        return limits_.instructions != 0 && instructions_ > limits_.instructions;
    }
    [[noreturn]] void stop(lua_State* state);

    Limits limits_;
    std::shared_ptr<ur::Account> account_;
    lua_State* const& running_;
    lua_Alloc allocator_ = nullptr;
    void* allocatorData_ = nullptr;
    std::size_t size_ = 0;       ///< bytes of the state
    ur::Account::Bounds outer_;  ///< before the outermost call
    std::size_t collected_ = 0;  ///< where the next collection was due after the last call, for the limit in total
    std::uint64_t instructions_ = 0;
    int depth_ = 0;
    bool refused_ = false;
    bool stopped_ = false;
    bool ended_ = false;
    bool collecting_ = false;
    std::atomic<bool> interrupted_ = false;
};

/// The scope of a call into a script.
class Metered {
public:
    explicit Metered(Meter& meter) noexcept : meter_(meter) { meter.enter(); }
    Metered(Metered const&) = delete;
    Metered& operator=(Metered const&) = delete;
    ~Metered() { meter_.leave(); }

private:
    Meter& meter_;
};

}  // namespace nxLC::impl
