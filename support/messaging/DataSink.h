// Base class of objects that receive data.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/ur/Reference.h"
#include "foundation/urThread/Buffer.h"
#include "foundation/urThread/ReferenceCount.h"

namespace nxSupport {

/// Receives buffers until it is closed. Derive from it to use them.
///
/// It only records that it was closed: buffers that arrive afterwards are still passed on. A sink held by reference
/// stays alive during its own calls. Threads may share the reference, but only one thread at a time may call the sink.
class NX_API DataSink : public urThread::ReferenceCount {
public:
    DataSink() noexcept = default;
    DataSink(DataSink const&) noexcept = default;
    DataSink& operator=(DataSink const&) noexcept = default;
    ~DataSink() override;

    void processData(ur::Reference<urThread::Buffer> data);
    /// `completed`: a normal end rather than an abort. The sink is closed once `onClose` has returned or thrown.
    void close(bool completed);

    [[nodiscard]] bool closed() const noexcept { return !open_; }
    /// False until the sink is closed.
    [[nodiscard]] bool completed() const noexcept { return completed_; }

protected:
    virtual void onData(ur::Reference<urThread::Buffer> data) = 0;

private:
    /// During the call `completed` already has its final value, but `closed` is still false.
    virtual void onClose();

    bool open_ = true;
    bool completed_ = false;
};

}  // namespace nxSupport
