// Connections, as clients and scripts use them.
#pragma once

#include <optional>

#include "foundation/nxRFL/Database.h"
#include "net/Connection.h"
#include "net/Manager.h"
#include "tools/nxhost/Transfers.h"

namespace nxhost {

/// A connection carried out by libcurl, with data about the answer. `TransferError` lists its error codes.
///
/// `start` does nothing while the transfer runs; afterwards it starts again. The host's transfers must outlive it.
class Connection final : public nxNet::Connection {
public:
    explicit Connection(Transfers& transfers) : transfers_(transfers), timeLimit_(transfers.options().timeLimit) {}
    Connection(Connection const&) = delete;
    Connection& operator=(Connection const&) = delete;

    /// 0 until the answer begins.
    [[nodiscard]] int responseStatus() const noexcept { return responseStatus_; }
    [[nodiscard]] Headers const& responseHeaders() const noexcept { return responseHeaders_; }
    /// The name's case does not matter. Empty if there is none.
    [[nodiscard]] urString::CString responseHeader(urString::CString const& name) const;
    /// The address after all redirections.
    [[nodiscard]] Progressed const& progress() const noexcept { return progress_; }
    /// The reason of a failure; empty if it has not failed.
    [[nodiscard]] urString::CString const& errorText() const noexcept { return errorText_; }

    /// For the next start, in seconds; 0 for none.
    [[nodiscard]] double timeLimit() const noexcept { return timeLimit_; }
    void setTimeLimit(double seconds) noexcept { timeLimit_ = seconds; }
    /// Sets the function called when `progress` has changed, until the transfer ends.
    void setProgressFunc(std::function<void()> function) { progressFunc_.set(std::move(function)); }

    /// Charges the connection and its data from now on, as long as it lives.
    void chargeTo(std::shared_ptr<ur::Account> const& account);

    /// Called by the transfer for each event.
    void deliver(TransferEvent event);

protected:
    void onStart() override;
    void onCancel() override;

private:
    void on(Reached const& /*event*/) { setConnected(); }
    void on(Answered& event);
    void on(Received& event) { dataArrived(std::move(event.data)); }
    void on(Progressed const& event);
    void on(Completed const& event);
    void on(Failed& event);

    Transfers& transfers_;
    double timeLimit_;
    int responseStatus_ = 0;
    Headers responseHeaders_;
    Progressed progress_;
    urString::CString errorText_;
    nxNet::CallbackSlot<> progressFunc_;
    void endSpan(std::string_view result) noexcept;

    ur::Charge charge_;
    ur::Charge transferCharge_;        ///< charged while a transfer runs
    ur::Charge responseCharge_;        ///< for the headers of the response
    std::optional<std::size_t> span_;  ///< on the time line, while a transfer runs
};

/// Creates the host's connections.
class Network final : public nxNet::Manager {
public:
    explicit Network(Transfers& transfers) noexcept : transfers_(transfers) {}

protected:
    ur::Reference<nxNet::Request> onCreateRequest() override { return ur::make<nxNet::Request>(); }
    ur::Reference<nxNet::Connection> onCreateConnection() override { return ur::make<Connection>(transfers_); }

private:
    Transfers& transfers_;
};

/// Registers the host's class of connections. Requires: the classes of nxNet are registered.
void exposeNetwork(nxRFL::Database& database);

}  // namespace nxhost
