// A pipe or another device that data go to.
#pragma once

#include <chrono>
#include <cstddef>
#include <deque>

#include "foundation/ur/Reference.h"
#include "foundation/urString/CString.h"
#include "foundation/urThread/Buffer.h"

namespace nxhost {

/// An open device, and the data that it has not taken yet. Nothing here waits for its reader.
///
/// Its sink owns it together with `Transfers`, which write what is left. So data arrive even if the sink has gone. An
/// error drops what waits, closes the device and stays.
class PipeWriter {
public:
    using Clock = std::chrono::steady_clock;

    /// Takes over the descriptor, which does not block. Gives up a reader that takes nothing for `stallLimit` seconds;
    /// 0 for no limit.
    PipeWriter(int descriptor, double stallLimit) noexcept : descriptor_(descriptor), stallLimit_(stallLimit) {}
    PipeWriter(PipeWriter const&) = delete;
    PipeWriter& operator=(PipeWriter const&) = delete;
    ~PipeWriter() { close(); }

    /// Writes what the device takes at once, and keeps the rest. Throws an `nxRFL::Exception` after an error, or when
    /// too much waits already.
    void write(ur::Reference<urThread::Buffer> const& data);
    /// Closes the device as soon as nothing waits. Throws likewise.
    void finish();
    /// Drops what waits. `reason` is the error from now on.
    void abandon(char const* reason);

    /// Writes what the device takes now, and gives up a reader that has taken nothing for too long. False if that
    /// ended in an error, `errorText`.
    bool advance();
    [[nodiscard]] bool waits() const noexcept { return !waiting_.empty(); }
    /// When `advance` gives up.
    [[nodiscard]] Clock::time_point deadline() const noexcept;
    /// Negative once it is closed.
    [[nodiscard]] int descriptor() const noexcept { return descriptor_; }
    [[nodiscard]] urString::CString const& errorText() const noexcept { return error_; }

private:
    void flush();
    void throwError() const;
    void close();

    int descriptor_;
    double stallLimit_;
    std::deque<ur::Reference<urThread::Buffer>> waiting_;
    std::size_t written_ = 0;  ///< of the first one
    std::size_t bytes_ = 0;    ///< of all, as far as they are not written
    Clock::time_point lastProgress_;
    bool finishing_ = false;
    urString::CString error_;
};

}  // namespace nxhost
