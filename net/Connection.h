// One transfer, as those who want it and those who perform it see it.
#pragma once

#include <cstdint>

#include "foundation/ur/ReferenceCount.h"
#include "foundation/urThread/Buffer.h"
#include "net/CallbackSlot.h"
#include "net/Request.h"

namespace nxNet {

/// Carries out one request and tells how it goes. Held by reference; made by a `Manager`.
///
/// The host derives from it and performs the transfer: `onStart` begins it, after which the host reports
/// `setConnected`, `dataArrived` for every block and at last one of `setComplete` and `setFailed`, each of which calls
/// the client's functions before it returns. The end is told once: with it both functions are released, and what is
/// reported later changes the status but calls nothing.
///
/// The functions may do anything: start, cancel, replace or remove themselves, throw into the reporting call, or drop
/// the last reference. So the host touches the connection after a report only while it holds a reference of its own.
/// One thread at a time, reports included; nothing is locked.
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
    /// The copy has the state and copies of the functions. The host's subclass says what becomes of the transfer.
    Connection(Connection const&) = default;
    Connection& operator=(Connection const&) = default;
    ~Connection() override;

    // For the client.

    void setRequest(ur::Reference<Request> request) noexcept { request_.swap(request); }
    [[nodiscard]] ur::Reference<Request> getRequest() const noexcept { return request_; }

    /// Is given each block of data as it arrives. An empty function removes the former one.
    void setDataFunc(DataFunc function) { dataFunc_.set(std::move(function)); }
    /// Is called whenever the status has changed; at the end for the last time, when the data function is released
    /// already. An empty function removes the former one.
    void setStatusFunc(StatusFunc function) { statusFunc_.set(std::move(function)); }

    /// Has the host begin the transfer.
    void start() { onStart(); }
    /// Has the host stop the transfer, whatever its state, and ends it as cancelled.
    void cancel();

    [[nodiscard]] Status getStatus() const noexcept { return status_; }
    /// What `setFailed` was called with last; 0 if it never was.
    [[nodiscard]] int getError() const noexcept { return error_; }

    // For the host.

    /// The peer is reached. Does nothing when the status says so already.
    void setConnected();
    /// Data that nobody wants is dropped.
    void dataArrived(ur::Reference<urThread::Buffer> buffer) { dataFunc_(std::move(buffer)); }
    /// The host's documentation says what `error` means.
    void setFailed(int error);
    void setComplete() { finish(Complete); }

protected:
    virtual void onStart() = 0;
    /// Stops the transfer, if there is one. The connection stays alive until it has been told as cancelled.
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
