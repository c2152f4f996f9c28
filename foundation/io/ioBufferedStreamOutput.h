// Buffers the bytes that a write context sends to a stream.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

#include "foundation/ur/Export.h"
#include "foundation/urOS/IOStream.h"

/// Collects bytes and passes them to a stream in large pieces.
///
/// The caller owns the stream, which must outlive this object. The destructor writes the rest; call `close` before to
/// learn whether that worked. The first error stays, and all later bytes are dropped. One thread at a time.
class NX_API ioBufferedStreamOutput {
public:
    static constexpr std::size_t usualBytes = 64 * 1024;

    /// `bufferBytes` is the buffer's size. Requires: at least 128.
    explicit ioBufferedStreamOutput(std::size_t bufferBytes = usualBytes) noexcept : bufferBytes_(bufferBytes) {}
    ioBufferedStreamOutput(ioBufferedStreamOutput const&) = delete;
    ioBufferedStreamOutput& operator=(ioBufferedStreamOutput const&) = delete;
    ~ioBufferedStreamOutput();

    urUtil::Error openIOStream(urOS::IOStream& stream);
    [[nodiscard]] bool isOpen() const noexcept { return stream_ != nullptr; }
    /// Writes the rest and releases the stream without closing it. Returns the first error, if any.
    urUtil::Error close();
    urUtil::Error flush();
    [[nodiscard]] urUtil::Error const& error() const noexcept { return error_; }

    /// Returns space for the next `bytes` bytes, at most 100; pass the end of the bytes written there to `moveTo`.
    /// Requires: open.
    [[nodiscard]] char* room(std::size_t bytes) {
        if (static_cast<std::size_t>(end_ - cursor_) < bytes) pass();
        return cursor_;
    }
    void moveTo(char* end) noexcept { cursor_ = end; }
    /// The number of bytes that fit into the buffer without a write to the stream.
    [[nodiscard]] std::size_t spare() const noexcept { return static_cast<std::size_t>(end_ - cursor_); }
    void write(std::string_view bytes) {
        if (bytes.size() > static_cast<std::size_t>(end_ - cursor_)) return writeAcross(bytes);
        std::memcpy(cursor_, bytes.data(), bytes.size());
        cursor_ += bytes.size();
    }
    /// The number of bytes written since opening.
    [[nodiscard]] std::uint64_t position() const noexcept {
        return passed_ + static_cast<std::uint64_t>(cursor_ - buffer_.get());
    }

private:
    void pass();
    void writeAcross(std::string_view bytes);
    void send(std::string_view bytes);

    std::size_t bufferBytes_;
    urOS::IOStream* stream_ = nullptr;
    std::unique_ptr<char[]> buffer_;
    char* cursor_ = nullptr;
    char* end_ = nullptr;
    std::uint64_t passed_ = 0;
    urUtil::Error error_;
};
