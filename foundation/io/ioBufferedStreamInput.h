// Buffers the bytes that a read context takes from a stream.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "foundation/ur/Export.h"
#include "foundation/urOS/IOStream.h"

/// Fetches bytes from a stream in large pieces, so it may read more than the caller asks for.
///
/// The caller owns the stream, which must outlive this object. After an error no more bytes come. One thread at a time.
class NX_API ioBufferedStreamInput {
public:
    static constexpr std::size_t usualBytes = 64 * 1024;
    static constexpr std::size_t padding = 16;

    /// `bufferBytes` is the buffer's size. Requires: at least 256, enough for a token and its text.
    explicit ioBufferedStreamInput(std::size_t bufferBytes = usualBytes) noexcept : bufferBytes_(bufferBytes) {}
    ioBufferedStreamInput(ioBufferedStreamInput const&) = delete;
    ioBufferedStreamInput& operator=(ioBufferedStreamInput const&) = delete;

    urUtil::Error openIOStream(urOS::IOStream& stream);
    [[nodiscard]] bool isOpen() const noexcept { return stream_ != nullptr; }
    /// Releases the stream without closing it. Returns the first error, if any.
    urUtil::Error close();
    [[nodiscard]] urUtil::Error const& error() const noexcept { return error_; }

    /// The most bytes that one call of `ensure` can provide.
    [[nodiscard]] std::size_t bufferBytes() const noexcept { return bufferBytes_; }
    /// Makes the next `bytes` bytes available. False at the end. Requires: at most `bufferBytes()`.
    [[nodiscard]] bool ensure(std::size_t bytes) { return available() >= bytes || fetch(bytes); }
    /// The number of bytes in the buffer.
    [[nodiscard]] std::size_t available() const noexcept { return static_cast<std::size_t>(end_ - cursor_); }
    /// The next bytes; they stay in place until `ensure` is called. After the available ones, `padding` zeros can be
    /// read.
    [[nodiscard]] char const* next() const noexcept { return cursor_; }
    /// Requires: that many bytes are available.
    void advance(std::size_t bytes) noexcept { cursor_ += bytes; }
    /// Ends the input here, even if the stream has more bytes.
    void abandon() noexcept;
    /// The number of bytes consumed since opening.
    [[nodiscard]] std::uint64_t position() const noexcept {
        return fetched_ - static_cast<std::uint64_t>(end_ - cursor_);
    }

private:
    bool fetch(std::size_t bytes);
    void endAt(char* end) noexcept;

    std::size_t bufferBytes_;
    urOS::IOStream* stream_ = nullptr;
    std::unique_ptr<char[]> buffer_;
    char const* cursor_ = nullptr;
    char const* end_ = nullptr;
    std::uint64_t fetched_ = 0;
    bool atEnd_ = true;
    urUtil::Error error_;
};
