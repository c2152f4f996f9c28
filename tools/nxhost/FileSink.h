// A file to which scripts write data.
#pragma once

#include <memory>

#include "foundation/urOS/AtomicFile.h"
#include "support/messaging/DataSink.h"
#include "tools/nxhost/PipeWriter.h"
#include "tools/nxhost/Transfers.h"

namespace nxhost {

/// Writes a new file and replaces the target by it when the sink is closed as completed. Errors are raised in the
/// script.
///
/// A pipe or another device is written as data arrive, without waiting for its reader: the main loop writes later what
/// the device does not take at once, and the transfer pauses until then. A pipe without a reader is refused.
class FileSink final : public nxSupport::DataSink {
public:
    /// The transfers must outlive this.
    FileSink(urString::CString const& path, Transfers& transfers);
    ~FileSink() override;

    void chargeTo(std::shared_ptr<ur::Account> const& account) {
        if (!charge_) charge_ = ur::Charge(account, bytesOfFile);
    }

protected:
    void onData(ur::Reference<urThread::Buffer> data) override;

private:
    void onClose() override;
    [[nodiscard]] bool openDevice(urString::CString const& path);

    static constexpr std::size_t bytesOfFile = 4096;

    Transfers& transfers_;
    urOS::AtomicFile file_;
    std::shared_ptr<PipeWriter> device_;  ///< null if the target is a regular file
    ur::Charge charge_;
};

}  // namespace nxhost
