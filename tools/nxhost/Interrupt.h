// Ctrl-C and the request to terminate.
#pragma once

#include <csignal>

namespace nxLC {
class State;
}

namespace nxhost {

/// Catches the signals INT and TERM for as long as it lives; there is one at a time.
///
/// The first one ends the script that runs and wakes the main loop, which then sees `pending`. A second one that comes
/// before the first was dealt with ends the process in the system's way, without the shut-down: what the cache has
/// paged out stays in the folder for temporary files.
class Interrupt {
public:
    Interrupt();
    Interrupt(Interrupt const&) = delete;
    Interrupt& operator=(Interrupt const&) = delete;
    ~Interrupt();

    /// Whose scripts to end; null for nobody's. The state outlives this or is taken away before.
    void watch(nxLC::State* state) noexcept;
    /// The signal that has come, or 0.
    [[nodiscard]] int pending() const noexcept;
    /// That signal is one that a prompt does not survive.
    [[nodiscard]] bool isFinal() const noexcept { return pending() == SIGTERM; }
    /// It has been dealt with.
    void clear() noexcept;
    /// Readable while a signal is pending.
    [[nodiscard]] int descriptor() const noexcept;

private:
    struct sigaction before_[2] = {};
};

}  // namespace nxhost
