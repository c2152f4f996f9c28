// All transfers under way.
#pragma once

#include <deque>
#include <map>
#include <memory>
#include <span>

#include "tools/nxhost/Interrupt.h"
#include "tools/nxhost/Transfer.h"

namespace nxhost {

class Connection;

/// Moves the transfers on and tells their connections, both only in `advance`. Owned by the main loop.
///
/// A connection stays alive while its transfer runs. What is told may do anything: start and cancel transfers, or run
/// the main loop once more from inside. What it throws leaves `advance`, and the rest is told by the next one.
class Transfers {
public:
    /// Throws `UsageError` for an allowed scheme that there is not.
    explicit Transfers(NetworkOptions const& options);
    Transfers(Transfers const&) = delete;
    Transfers& operator=(Transfers const&) = delete;
    /// Ends all without a word.
    ~Transfers();

    /// Requires: the connection has no transfer. Also what cannot be sent is told by `advance`.
    void start(Connection& connection);
    /// Nothing when the connection has no transfer.
    void stop(Connection& connection) noexcept;
    [[nodiscard]] bool running(Connection const& connection) const noexcept { return jobs_.contains(&connection); }
    [[nodiscard]] bool empty() const noexcept { return jobs_.empty(); }

    /// False when there was nothing to tell. What is left when a signal comes waits for the next one.
    bool advance(Interrupt const& interrupt);
    /// Sleeps until there may be something to advance, one of `descriptors` is readable or `wake` was called.
    void wait(std::span<int const> descriptors);
    /// Any thread.
    void wake() noexcept { curl_multi_wakeup(multi_); }

    [[nodiscard]] NetworkOptions const& options() const noexcept { return options_; }

private:
    struct Job {
        ur::Reference<Connection> connection;
        std::unique_ptr<Transfer> transfer;
    };

    [[nodiscard]] double limited(double seconds) const noexcept;
    void collect();
    [[nodiscard]] Job* nextWithNews();
    void tell(Job& job);

    NetworkOptions const options_;
    CURLM* multi_;
    std::map<Connection const*, Job> jobs_;
    std::deque<Connection const*> withNews_;  // some of them may have gone
};

}  // namespace nxhost
