// One transfer, for the client that requests it and the host that performs it.
#pragma once

#include <cstdint>

#include "foundation/ur/ReferenceCount.h"
#include "foundation/urThread/Buffer.h"
#include "net/CallbackSlot.h"
#include "net/Request.h"

namespace nxNet {

/// Carries out one request and reports its progress. Held by reference; created by a `Manager`.
///
/// The host derives from it and performs the transfer. `onStart` begins it; afterwards the host calls `setConnected`,
/// then `dataArrived` for every block, and finally `setComplete` or `setFailed`. Each of these calls the client's
/// functions before it returns. The end is reported once and releases both functions; later calls change the status but
/// call nothing.
///
/// The functions may do anything: start, cancel, replace or remove themselves, throw into the reporting call, or drop
/// the last reference. So the host may use the connection after such a call only if it holds a reference of its own.
/// One thread at a time, for calls of the host too; there are no locks.
class NX_API Connection : public ur::ReferenceCount {
public:
    enum Status : std::int32_t {
        NotConnected = 0,
        Connected = 1,
        ConnectionFailed = 2,
        Cancelled = 3,
        Complete = 4,
    };
    using DataFunc = CallbackSlot<ur::Reference<urThread::Buffer>>::Function;
    using StatusFunc = CallbackSlot<>::Function;

    Connection() noexcept = default;
    /// Copies the state and the functions. The host's subclass decides what happens to the transfer.
    Connection(Connection const&) = default;
    Connection& operator=(Connection const&) = default;
    ~Connection() override;

    // For the client.

    void setRequest(ur::Reference<Request> request) noexcept { request_.swap(request); }
    [[nodiscard]] ur::Reference<Request> getRequest() const noexcept { return request_; }

    /// Sets the function that receives each block of data. An empty function removes the current one.
    void setDataFunc(DataFunc function) { dataFunc_.set(std::move(function)); }
    /// Sets the function called after each change of the status. In the last call, at the end, the data function is
    /// already released. An empty function removes the current one.
    void setStatusFunc(StatusFunc function) { statusFunc_.set(std::move(function)); }

    /// Asks the host to begin the transfer.
    void start() { onStart(); }
    /// Asks the host to stop the transfer in any state, and ends it as cancelled.
    void cancel();

    [[nodiscard]] Status getStatus() const noexcept { return status_; }
    /// The argument of the last `setFailed`; 0 if it was never called.
    [[nodiscard]] int getError() const noexcept { return error_; }

    // For the host.

    /// The peer is reached. Does nothing if the status is already `Connected`.
    void setConnected();
    /// Drops the data if there is no data function.
    void dataArrived(ur::Reference<urThread::Buffer> buffer) { dataFunc_(std::move(buffer)); }
    /// The host documents the values of `error`.
    void setFailed(int error);
    void setComplete() { finish(Complete); }

protected:
    virtual void onStart() = 0;
    /// Stops the transfer, if there is one. The connection stays alive until the cancellation has been reported.
    virtual void onCancel() = 0;

private:
    void finish(Status status);

    ur::Reference<Request> request_;
    Status status_ = NotConnected;
    std::int32_t error_ = 0;
    CallbackSlot<ur::Reference<urThread::Buffer>> dataFunc_;
    CallbackSlot<> statusFunc_;
};

}  // namespace nxNet
