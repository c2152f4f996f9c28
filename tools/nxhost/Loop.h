// The main loop.
#pragma once

#include "foundation/urThread/RunQueue.h"
#include "tools/nxhost/Interrupt.h"
#include "tools/nxhost/Transfers.h"

namespace nxhost {

/// Thrown when a signal or the script has requested the program's end.
struct Ended {};

/// Runs functions from other threads, advances the transfers, and sleeps while there is nothing to do.
class Loop {
public:
    /// The interrupt must outlive the loop.
    Loop(NetworkOptions const& options, Interrupt& interrupt) : interrupt_(interrupt), transfers_(options) {}
    Loop(Loop const&) = delete;
    Loop& operator=(Loop const&) = delete;

    [[nodiscard]] urThread::RunQueue& queue() noexcept { return queue_; }
    [[nodiscard]] Transfers& transfers() noexcept { return transfers_; }
    [[nodiscard]] Interrupt& interrupt() noexcept { return interrupt_; }

    /// Whether transfers run or functions wait.
    [[nodiscard]] bool busy() const noexcept { return !transfers_.empty() || queue_.size() > 0; }
    /// Does pending work, or sleeps until there is some. Returns false if nothing is left to wait for. Throws `Ended`
    /// if a signal is pending.
    bool runOnce();
    /// Does pending work, or sleeps until there is some or `descriptor` has input. Returns true if input can be read.
    /// Throws `Ended` if a signal is pending.
    bool runOnceOrInput(int descriptor);

private:
    /// Wakes the loop from other threads.
    class Queue final : public urThread::RunQueue {
    public:
        explicit Queue(Transfers& transfers) noexcept : transfers_(transfers) {}

    private:
        void onAdd() override { transfers_.wake(); }

        Transfers& transfers_;
    };

    bool work();

    Interrupt& interrupt_;
    Transfers transfers_;
    Queue queue_{transfers_};
};

}  // namespace nxhost
