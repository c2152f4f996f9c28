// All transfers under way.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <vector>

#include "foundation/nxRFL/Exception.h"
#include "tools/nxhost/Interrupt.h"
#include "tools/nxhost/PipeWriter.h"
#include "tools/nxhost/Transfer.h"

namespace nxhost {

class Connection;

/// Moves the transfers on and tells their connections, both only in `advance`. Owned by the main loop.
///
/// Data that a pipe does not take at once are written here as well. The transfer that they come from is held meanwhile:
/// it receives nothing and tells nothing, but its time limit and `stop` hold.
///
/// A connection stays alive while its transfer runs. What is told may do anything: start and cancel transfers, or run
/// the main loop once more from inside. What it throws leaves `advance`, and the rest is told by the next one.
class Transfers {
public:
    /// Throws `UsageError` for an allowed scheme that there is not.
    explicit Transfers(NetworkOptions const& options);
    /// Is called when a pipe fails that was waited for.
    void setPipeErrorHandler(std::function<void(nxRFL::Exception const&)> handler) {
        onPipeError_ = std::move(handler);
    }
    Transfers(Transfers const&) = delete;
    Transfers& operator=(Transfers const&) = delete;
    /// Ends all without a word.
    ~Transfers();

    /// Requires: the connection has no transfer. Also what cannot be sent is told by `advance`.
    void start(Connection& connection);
    /// Nothing when the connection has no transfer.
    void stop(Connection& connection) noexcept;
    [[nodiscard]] bool running(Connection const& connection) const noexcept { return jobs_.contains(&connection); }
    /// Nothing is under way, and no data wait for a pipe.
    [[nodiscard]] bool empty() const noexcept { return jobs_.empty() && pipes_.empty(); }
    /// What waits for a pipe is lost unless `advance` goes on.
    [[nodiscard]] bool owesData() const noexcept;
    /// Writes to a pipe what it does not take yet. The transfer that is just told is held until then.
    void waitFor(std::shared_ptr<PipeWriter> const& pipe);

    /// False when there was nothing to tell. What is left when a signal comes waits for the next one.
    bool advance(Interrupt const& interrupt);
    /// Sleeps until there may be something to advance, one of `descriptors` is readable or `wake` was called.
    void wait(std::span<int const> descriptors);
    /// Any thread.
    void wake() noexcept { curl_multi_wakeup(multi_); }

    [[nodiscard]] NetworkOptions const& options() const noexcept { return options_; }

private:
    using Clock = PipeWriter::Clock;
    using Pipes = std::vector<std::shared_ptr<PipeWriter>>;

    struct Job {
        ur::Reference<Connection> connection;
        std::unique_ptr<Transfer> transfer;
        Clock::time_point deadline;  ///< libcurl has the same, but not for what is still to be written
        Pipes pipes = {};            ///< that it is held for

        [[nodiscard]] bool hasEvents() const noexcept { return pipes.empty() && transfer->hasEvents(); }
    };

    [[nodiscard]] double limited(double seconds) const noexcept;
    void advancePipes();
    static void giveUp(Job& job);
    [[nodiscard]] int mostMilliseconds() const;
    void collect();
    [[nodiscard]] Job* nextReady();
    void tell(Job& job);

    NetworkOptions const options_;
    CURLM* multi_;
    std::map<Connection const*, Job> jobs_;
    std::deque<Connection const*> ready_;  // some of them may have gone
    Connection const* told_ = nullptr;     // just now
    Pipes pipes_;                          // for which data wait
    std::function<void(nxRFL::Exception const&)> onPipeError_;
};

}  // namespace nxhost
