// Ctrl-C, the requests to terminate, and a pipe that nobody reads any more.
#pragma once

#include <csignal>
#include <iterator>

namespace nxLC {
class State;
}

namespace nxhost {

/// Catches the signals INT, TERM, HUP and PIPE for as long as it lives; there is one at a time.
///
/// The first one ends the script that runs and wakes the main loop, which then sees `pending`. One that comes a second
/// or more after that and before the first was dealt with ends the process in the system's way, without the shut-down;
/// earlier ones are taken for the same request, since many senders signal a process and then its group. PIPE is no such
/// second one: it comes with every write.
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
    [[nodiscard]] bool isFinal() const noexcept { return pending() != 0 && pending() != SIGINT; }
    /// It has been dealt with.
    void clear() noexcept;
    /// Is removed by a signal that ends the process in the system's way; null for nothing. The texts outlive this or
    /// are taken away before.
    void removeWhenKilled(char const* file, char const* folder) noexcept;
    /// Readable while a signal is pending.
    [[nodiscard]] int descriptor() const noexcept;

private:
    static constexpr int signals[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};

    struct sigaction before_[std::size(signals)] = {};
};

}  // namespace nxhost
