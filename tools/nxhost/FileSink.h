// A file that scripts pour data into.
#pragma once

#include "foundation/urOS/AtomicFile.h"
#include "support/messaging/DataSink.h"

namespace nxhost {

/// Writes a file beside its target, which it takes the place of when the sink is closed as completed. Errors are raised
/// toward the script.
class FileSink final : public nxSupport::DataSink {
public:
    explicit FileSink(urString::CString const& path);

protected:
    void onData(ur::Reference<urThread::Buffer> data) override;

private:
    void onClose() override;

    urOS::AtomicFile file_;
};

}  // namespace nxhost
