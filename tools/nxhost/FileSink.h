// A file that scripts pour data into.
#pragma once

#include "foundation/urOS/AtomicFile.h"
#include "support/messaging/DataSink.h"
#include "tools/nxhost/Interrupt.h"

namespace nxhost {

/// Writes a file beside its target, which it takes the place of when the sink is closed as completed. A pipe or another
/// device is written as the data come. Errors are raised toward the script.
///
/// Nothing keeps the main loop waiting for good: a pipe without a reader is refused, and a reader that does not read
/// is waited for until `interrupt` is pending or the time is up.
class FileSink final : public nxSupport::DataSink {
public:
    /// The interrupt outlives this.
    FileSink(urString::CString const& path, Interrupt const& interrupt);
    ~FileSink() override;

protected:
    void onData(ur::Reference<urThread::Buffer> data) override;

private:
    void onClose() override;
    void writeDevice(char const* bytes, std::size_t size) const;
    void waitForDevice() const;
    void closeDevice() noexcept;

    Interrupt const& interrupt_;
    urOS::AtomicFile file_;
    int device_ = -1;  ///< negative when the target is a regular file
};

}  // namespace nxhost
