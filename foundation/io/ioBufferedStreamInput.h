// The buffer between a byte stream and a read context.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "foundation/ur/Export.h"
#include "foundation/urOS/IOStream.h"

/// Fetches bytes from a stream in large pieces, so that it may read beyond what is asked for.
///
/// The stream is not owned and must outlive this object. After an error there are no more bytes.
/// One thread at a time.
class NX_API ioBufferedStreamInput {
public:
    static constexpr std::size_t usualBytes = 64 * 1024;

    /// Holds so many bytes at once. Requires: at least 256, which a token and the text in it take up.
    explicit ioBufferedStreamInput(std::size_t bufferBytes = usualBytes) noexcept : bufferBytes_(bufferBytes) {}
    ioBufferedStreamInput(ioBufferedStreamInput const&) = delete;
    ioBufferedStreamInput& operator=(ioBufferedStreamInput const&) = delete;

    urUtil::Error openIOStream(urOS::IOStream& stream);
    [[nodiscard]] bool isOpen() const noexcept { return stream_ != nullptr; }
    /// Lets the stream go, open as it is. The result is the error there was.
    urUtil::Error close();
    [[nodiscard]] urUtil::Error const& error() const noexcept { return error_; }

    /// What `ensure` can promise at once.
    [[nodiscard]] std::size_t bufferBytes() const noexcept { return bufferBytes_; }
    /// Whether the next `bytes` bytes are there, at most `bufferBytes()` of them.
    [[nodiscard]] bool ensure(std::size_t bytes) { return available() >= bytes || fetch(bytes); }
    /// The number of bytes that are there without asking the stream.
    [[nodiscard]] std::size_t available() const noexcept { return static_cast<std::size_t>(end_ - cursor_); }
    /// The next bytes; they stay in place until `ensure` is called.
    [[nodiscard]] char const* next() const noexcept { return cursor_; }
    /// Requires: that many bytes are available.
    void advance(std::size_t bytes) noexcept { cursor_ += bytes; }
    /// Ends the input here, whatever the stream still has.
    void abandon() noexcept;
    /// The number of bytes passed since opening.
    [[nodiscard]] std::uint64_t position() const noexcept {
        return fetched_ - static_cast<std::uint64_t>(end_ - cursor_);
    }

private:
    bool fetch(std::size_t bytes);

    std::size_t bufferBytes_;
    urOS::IOStream* stream_ = nullptr;
    std::unique_ptr<char[]> buffer_;
    char const* cursor_ = nullptr;
    char const* end_ = nullptr;
    std::uint64_t fetched_ = 0;
    bool atEnd_ = true;
    urUtil::Error error_;
};
