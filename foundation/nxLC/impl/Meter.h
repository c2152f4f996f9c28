// Counting what a script uses, and stopping it.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "foundation/nxLC/Limits.h"
#include "foundation/nxLC/impl/lua.h"
#include "foundation/urString/CString.h"

namespace nxLC::impl {

/// Watches one state: every allocation goes through it, and a hook reports every thousand instructions.
///
/// A script whose instructions are used up, or that is interrupted, gets an error at every further instruction of its
/// thread, so that catching the error does not help it. Memory that is refused is Lua's ordinary error.
class Meter {
public:
    static constexpr int period = 1000;  ///< instructions between two looks

    Meter() = default;
    Meter(Meter const&) = delete;
    Meter& operator=(Meter const&) = delete;

    /// Puts itself between the state and its allocator. Lasts until `detach`, and for states of all its threads.
    void attach(lua_State* state) noexcept;
    void detach(lua_State* state) noexcept;

    void setLimits(Limits const& limits) noexcept { limits_ = limits; }

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

    /// Another thousand instructions have run on `state`. May raise.
    void tick(lua_State* state);

private:
    static void* allocate(void* meter, void* block, std::size_t oldSize, std::size_t newSize);
    void relieve(lua_State* state);

    static constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

    Limits limits_;
    lua_Alloc allocator_ = nullptr;
    void* allocatorData_ = nullptr;
    std::size_t used_ = 0;  ///< bytes
    std::size_t allowed_ = unlimited;
    std::size_t collectAt_ = unlimited;
    std::uint64_t instructions_ = 0;
    int depth_ = 0;
    bool refused_ = false;
    bool stopped_ = false;
    bool ended_ = false;
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
