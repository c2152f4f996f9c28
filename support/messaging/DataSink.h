// Whatever data is poured into.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/ur/Reference.h"
#include "foundation/urThread/Buffer.h"
#include "foundation/urThread/ReferenceCount.h"

namespace nxSupport {

/// Receives buffers until it is closed. Derive from it to do something with them.
///
/// It only keeps note of having been closed: buffers that come afterwards are passed on as well. The sink stays
/// alive during its own calls when it is held by reference. Threads may share the reference, but only one at a
/// time may call the sink.
class NX_API DataSink : public urThread::ReferenceCount {
public:
    DataSink() noexcept = default;
    DataSink(DataSink const&) noexcept = default;
    DataSink& operator=(DataSink const&) noexcept = default;
    ~DataSink() override;

    void processData(ur::Reference<urThread::Buffer> data);
    /// `completed` tells a normal end from an abort. The sink counts as closed when `onClose` has returned or thrown.
    void close(bool completed);

    [[nodiscard]] bool closed() const noexcept { return !open_; }
    /// False as long as the sink has not been closed.
    [[nodiscard]] bool completed() const noexcept { return completed_; }

protected:
    virtual void onData(ur::Reference<urThread::Buffer> data) = 0;

private:
    /// Sees `completed` as it will be, and `closed` as it was.
    virtual void onClose();

    bool open_ = true;
    bool completed_ = false;
};

}  // namespace nxSupport
