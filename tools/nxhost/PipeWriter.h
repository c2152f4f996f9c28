// Writes data to a pipe or another device.
#pragma once

#include <chrono>
#include <cstddef>
#include <deque>

#include "foundation/ur/Reference.h"
#include "foundation/urString/CString.h"
#include "foundation/urThread/Buffer.h"

namespace nxhost {

/// An open device, and the data that it has not taken yet. Never waits for the device's reader.
///
/// A sink owns it together with `Transfers`, which write the remaining data, so data arrive even after the sink was
/// destroyed. An error drops the waiting data, closes the device and is kept.
class PipeWriter {
public:
    using Clock = std::chrono::steady_clock;

    /// Takes ownership of the descriptor, which must be non-blocking. Gives up a reader that takes nothing for
    /// `stallLimit` seconds; 0 for no limit.
    PipeWriter(int descriptor, double stallLimit) noexcept : descriptor_(descriptor), stallLimit_(stallLimit) {}
    PipeWriter(PipeWriter const&) = delete;
    PipeWriter& operator=(PipeWriter const&) = delete;
    ~PipeWriter() { close(); }

    /// Writes the bytes that the device takes at once, and keeps the rest. Throws an `nxRFL::Exception` after an error,
    /// or if too much data waits already.
    void write(ur::Reference<urThread::Buffer> const& data);
    /// Closes the device as soon as no data waits. Throws as `write` does.
    void finish();
    /// Drops the waiting data. `reason` is the error from now on.
    void abandon(char const* reason);

    /// Writes the bytes that the device takes now. Gives up if the reader has taken nothing for too long. Returns false
    /// if this caused an error; `errorText` describes it.
    bool advance();
    [[nodiscard]] bool waits() const noexcept { return !waiting_.empty(); }
    /// The time at which `advance` gives up.
    [[nodiscard]] Clock::time_point deadline() const noexcept;
    /// Negative after closing.
    [[nodiscard]] int descriptor() const noexcept { return descriptor_; }
    [[nodiscard]] urString::CString const& errorText() const noexcept { return error_; }

private:
    void flush();
    void throwError() const;
    void close();

    int descriptor_;
    double stallLimit_;
    std::deque<ur::Reference<urThread::Buffer>> waiting_;
    std::size_t written_ = 0;  ///< bytes of the first waiting buffer that are written
    std::size_t bytes_ = 0;    ///< bytes of all buffers that are not written
    Clock::time_point lastProgress_;
    bool finishing_ = false;
    urString::CString error_;
};

}  // namespace nxhost
