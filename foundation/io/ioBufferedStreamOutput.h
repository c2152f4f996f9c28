// The buffer between a write context and a byte stream.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

#include "foundation/ur/Export.h"
#include "foundation/urOS/IOStream.h"

/// Collects bytes and hands them to a stream in large pieces.
///
/// The stream is not owned and must outlive this object, whose destruction writes the rest; who must know whether
/// that worked calls `close` before. The first error stays: from then on bytes are dropped. One thread at a time.
class NX_API ioBufferedStreamOutput {
public:
    static constexpr std::size_t usualBytes = 64 * 1024;

    /// Hands down so many bytes at once. Requires: at least 128.
    explicit ioBufferedStreamOutput(std::size_t bufferBytes = usualBytes) noexcept : bufferBytes_(bufferBytes) {}
    ioBufferedStreamOutput(ioBufferedStreamOutput const&) = delete;
    ioBufferedStreamOutput& operator=(ioBufferedStreamOutput const&) = delete;
    ~ioBufferedStreamOutput();

    urUtil::Error openIOStream(urOS::IOStream& stream);
    [[nodiscard]] bool isOpen() const noexcept { return stream_ != nullptr; }
    /// Hands down the rest and lets the stream go, open as it is. The result is the first error there was.
    urUtil::Error close();
    urUtil::Error flush();
    [[nodiscard]] urUtil::Error const& error() const noexcept { return error_; }

    /// Room for the next `bytes` bytes, at most a hundred; `moveTo` says where those put there end.
    /// Requires: open.
    [[nodiscard]] char* room(std::size_t bytes) {
        if (static_cast<std::size_t>(end_ - cursor_) < bytes) pass();
        return cursor_;
    }
    void moveTo(char* end) noexcept { cursor_ = end; }
    /// How many bytes there is room for without handing any down.
    [[nodiscard]] std::size_t spare() const noexcept { return static_cast<std::size_t>(end_ - cursor_); }
    void write(std::string_view bytes) {
        if (bytes.size() > static_cast<std::size_t>(end_ - cursor_)) return writeAcross(bytes);
        std::memcpy(cursor_, bytes.data(), bytes.size());
        cursor_ += bytes.size();
    }
    /// The number of bytes since opening.
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
