// Measures what a script uses, and stops it.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

#include "foundation/nxLC/Limits.h"
#include "foundation/nxLC/impl/lua.h"
#include "foundation/ur/Account.h"

namespace nxLC::impl {

/// Watches one state: counts all its allocations on the account and its instructions by hooks.
///
/// An instruction stands for a microsecond of the processor's time at most: work that takes longer on the whole, such
/// as that of native functions, uses up the budget as well. The clock is read when a hook fires and at every 64th look
/// at the limits.
///
/// Each Lua thread counts for itself, and its hook fires after a number of its own instructions. So instructions are
/// counted ahead, when a thread begins and whenever its hook fires: few at first, since most coroutines are short,
/// later a thousand at a time. All threads together never run more than what was counted.
///
/// When a script has used up its instructions or is interrupted, every further instruction of its thread raises an
/// error, so catching the error does not help. Refused memory is Lua's ordinary error. A single instruction may fill a
/// large block of memory, so such blocks count by their size, and a script that must end gets no huge ones.
class Meter final : private ur::Account::Collector {
public:
    static constexpr int period = 1000;                     ///< the most instructions between two checks
    static constexpr int firstPeriod = 50;                  ///< of a coroutine
    static constexpr int slowPeriod = 16;                   ///< after instructions that took long
    static constexpr std::size_t bytesPerInstruction = 16;  ///< when texts are copied or searched

    /// `running` is the thread to collect on.
    Meter(std::shared_ptr<ur::Account> account, lua_State* const& running) noexcept
        : account_(std::move(account)), running_(running) {}
    Meter(Meter const&) = delete;
    Meter& operator=(Meter const&) = delete;

    /// Installs itself as the state's allocator, for all its threads, until `detach`.
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

    /// Ends the running script, which called native code from `running`, and every later script when it begins.
    void end(lua_State* running) noexcept;
    [[nodiscard]] bool ended() const noexcept { return ended_; }

    /// The script must end: it has used up its instructions, it was interrupted, or `end` was called.
    [[nodiscard]] bool stopped() const noexcept { return stopped_; }
    /// The reason, or null.
    [[nodiscard]] char const* reason() const noexcept;
    /// An allocation was refused since the outermost call began.
    [[nodiscard]] bool memoryRefused() const noexcept { return refused_; }

    /// The instructions counted ahead for `state` were used up. May raise.
    void tick(lua_State* state);
    /// The thread `state` created a coroutine. May raise.
    void begin(lua_State* state, lua_State* coroutine);
    /// Whether the script must end, checked after native code has counted.
    [[nodiscard]] bool mustStop() noexcept {
        if (!active()) return false;
        stopped_ = stopped_ || interrupted_ || isSpent() || (++looks_ % looksPerClock == 0 && isTimeSpent());
        return stopped_;
    }
    /// Counts the work of a native function, such as copying values. Never raises.
    void spend(std::uint64_t instructions) noexcept { instructions_ += instructions; }
    void spendBytes(std::size_t bytes) noexcept { spend(bytes / bytesPerInstruction); }
    /// Counts, then throws an `nxRFL::Exception` with the reason if the script must end.
    void spendOrThrow(std::uint64_t instructions);

    /// Frees memory that only garbage holds, if it is much. Never raises. Requires: no native operation is half done.
    void relieve(lua_State* state) noexcept {
        if (account_->wantsCollection()) [[unlikely]]
            collect(state);
    }

private:
    using Clock = std::chrono::steady_clock;

    static constexpr std::size_t largeBlock = 4096;      ///< counted from this size on
    static constexpr std::size_t hugeBlock = 64 * 1024;  ///< refused to a script that must end; errors need less
    static constexpr unsigned looksPerClock = 64;
    static constexpr std::chrono::milliseconds longPeriod{2};

    static void* allocate(void* meter, void* block, std::size_t oldSize, std::size_t newSize);
    [[nodiscard]] bool grants(std::size_t bytes) noexcept;
    void collect() noexcept override { collect(running_); }
    void collect(lua_State* state) noexcept;
    [[nodiscard]] ur::Account::Bounds bounded(ur::Account::Bounds bounds) noexcept;
    void count(lua_State* state, lua_State* thread, int instructions);
    [[nodiscard]] bool isSpent() const noexcept {
        return limits_.instructions != 0 && instructions_ > limits_.instructions;
    }
    [[nodiscard]] bool isTimeSpent() noexcept;
    [[nodiscard]] bool wasSlow() noexcept;
    [[noreturn]] void stop(lua_State* state);

    Limits limits_;
    std::shared_ptr<ur::Account> account_;
    lua_State* const& running_;
    lua_Alloc allocator_ = nullptr;
    void* allocatorData_ = nullptr;
    std::size_t size_ = 0;       ///< bytes of the state
    ur::Account::Bounds outer_;  ///< before the outermost call
    std::size_t collected_ = 0;  ///< threshold of the next collection for the total limit, after the last call
    std::uint64_t instructions_ = 0;
    unsigned looks_ = 0;
    Clock::time_point began_;                                ///< the outermost call
    Clock::time_point ticked_;                               ///< the last time that a hook fired
    std::optional<std::chrono::nanoseconds> processorTime_;  ///< when half of the allowed time had passed
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
