// All running transfers.
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

/// Advances the transfers and calls their connections, both only in `advance`. Owned by the main loop.
///
/// It also writes the data that a pipe did not take at once. Meanwhile it holds the transfer that the data come from:
/// the transfer receives and reports nothing, but its time limit and `stop` still apply.
///
/// A connection stays alive while its transfer runs. Callbacks may start and cancel transfers or run the main loop
/// recursively. An exception from a callback leaves `advance`; the next call reports the remaining events.
class Transfers {
public:
    /// Throws `UsageError` if an allowed scheme does not exist.
    explicit Transfers(NetworkOptions const& options);
    /// Sets the function called when a pipe with waiting data fails.
    void setPipeErrorHandler(std::function<void(nxRFL::Exception const&)> handler) {
        onPipeError_ = std::move(handler);
    }
    Transfers(Transfers const&) = delete;
    Transfers& operator=(Transfers const&) = delete;
    /// Ends all transfers without reporting.
    ~Transfers();

    /// Requires: the connection has no transfer. If the request cannot be sent, `advance` reports that.
    void start(Connection& connection);
    /// Does nothing if the connection has no transfer.
    void stop(Connection& connection) noexcept;
    [[nodiscard]] bool running(Connection const& connection) const noexcept { return jobs_.contains(&connection); }
    /// Whether no transfer runs and no data wait for a pipe.
    [[nodiscard]] bool empty() const noexcept { return jobs_.empty() && pipes_.empty(); }
    /// Whether data wait for a pipe. They are lost unless `advance` is called again.
    [[nodiscard]] bool hasPendingWrites() const noexcept;
    /// Writes to a pipe the data that it has not taken yet. Holds the transfer that is currently reported until then.
    void waitFor(std::shared_ptr<PipeWriter> const& pipe);

    /// Returns false if there was nothing to report. After a signal the remaining events wait for the next call.
    bool advance(Interrupt const& interrupt);
    /// Sleeps until there may be work for `advance`, one of `descriptors` is readable or `wake` is called.
    void wait(std::span<int const> descriptors);
    /// May be called from any thread.
    void wake() noexcept { curl_multi_wakeup(multi_); }

    [[nodiscard]] NetworkOptions const& options() const noexcept { return options_; }

private:
    using Clock = PipeWriter::Clock;
    using Pipes = std::vector<std::shared_ptr<PipeWriter>>;

    struct Job {
        ur::Reference<Connection> connection;
        std::unique_ptr<Transfer> transfer;
        Clock::time_point deadline;  ///< libcurl has the same, but not for data that a pipe still has to take
        Pipes pipes = {};            ///< for which the transfer is held

        [[nodiscard]] bool hasEvents() const noexcept { return pipes.empty() && transfer->hasEvents(); }
    };

    [[nodiscard]] double limited(double seconds) const noexcept;
    void advancePipes();
    static void giveUp(Job& job);
    [[nodiscard]] int mostMilliseconds() const;
    void collect();
    [[nodiscard]] Job* nextReady();
    void deliver(Job& job);

    NetworkOptions const options_;
    CURLM* multi_;
    std::map<Connection const*, Job> jobs_;
    std::deque<Connection const*> ready_;     // may contain connections whose transfer has ended
    Connection const* delivering_ = nullptr;  // the one being called
    Pipes pipes_;                             // with waiting data
    std::function<void(nxRFL::Exception const&)> onPipeError_;
};

}  // namespace nxhost
