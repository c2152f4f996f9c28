// Handles Ctrl-C, termination requests and closed pipes.
#pragma once

#include <csignal>
#include <iterator>

namespace nxLC {
class State;
}

namespace nxhost {

/// Catches the signals INT, TERM, HUP and PIPE during its lifetime. One object at a time.
///
/// The first signal ends the running script and wakes the main loop, which then checks `pending`. A further signal, one
/// second or more later and before `clear`, ends the process as the system does by default, without the shut-down.
/// Earlier further signals count as the same request, because many senders signal a process and then its group. PIPE
/// never counts as a further signal, because every write repeats it.
class Interrupt {
public:
    Interrupt();
    Interrupt(Interrupt const&) = delete;
    Interrupt& operator=(Interrupt const&) = delete;
    ~Interrupt();

    /// Sets the state whose scripts are ended; null for none. The state must outlive this or be unset before.
    void watch(nxLC::State* state) noexcept;
    /// The caught signal, or 0.
    [[nodiscard]] int pending() const noexcept;
    /// Whether the pending signal also ends a prompt.
    [[nodiscard]] bool isFinal() const noexcept { return pending() != 0 && pending() != SIGINT; }
    /// Forgets the signal after it has been handled.
    void clear() noexcept;
    /// Sets the file and folder to remove when a signal ends the process without shut-down; null for none. The texts
    /// must outlive this or be unset before.
    void removeWhenKilled(char const* file, char const* folder) noexcept;
    /// Becomes readable while a signal is pending.
    [[nodiscard]] int descriptor() const noexcept;

private:
    static constexpr int signals[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};

    struct sigaction before_[std::size(signals)] = {};
};

}  // namespace nxhost
