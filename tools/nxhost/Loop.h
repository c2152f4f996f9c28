// The main loop.
#pragma once

#include "foundation/urThread/RunQueue.h"
#include "tools/nxhost/Interrupt.h"
#include "tools/nxhost/Transfers.h"

namespace nxhost {

/// A signal or the script has asked for the program's end.
struct Ended {};

/// Runs what other threads hand over, moves the transfers on, and sleeps while neither has anything to do.
class Loop {
public:
    /// The interrupt outlives the loop.
    Loop(NetworkOptions const& options, Interrupt& interrupt) : interrupt_(interrupt), transfers_(options) {}
    Loop(Loop const&) = delete;
    Loop& operator=(Loop const&) = delete;

    [[nodiscard]] urThread::RunQueue& queue() noexcept { return queue_; }
    [[nodiscard]] Transfers& transfers() noexcept { return transfers_; }
    [[nodiscard]] Interrupt& interrupt() noexcept { return interrupt_; }

    /// Something is still to come.
    [[nodiscard]] bool busy() const noexcept { return !transfers_.empty() || queue_.size() > 0; }
    /// Does what is to be done, or else sleeps until there is something. False when nothing is to come. Throws `Ended`
    /// when a signal is pending.
    bool turn();
    /// Does what is to be done, or else sleeps until there is something or input for `descriptor`. True when input can
    /// be read. Throws likewise.
    bool turnOrInput(int descriptor);

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
