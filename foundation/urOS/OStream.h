// Characters and formatted text on top of a byte stream.
#pragma once

#include <array>
#include <cstdarg>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "foundation/ur/Export.h"
#include "foundation/urOS/IOStream.h"

namespace urOS {

/// Collects text and hands it to a byte stream in large pieces.
///
/// The stream is not owned and must outlive this object, whose destruction writes the rest; who must know whether
/// that worked calls `flush` before. The first error stays: from then on text is dropped. One thread at a time.
class NX_API OStream {
public:
    enum class Flush { whenFull, afterEachPrint };

    explicit OStream(IOStream& stream, Flush flush = Flush::whenFull) noexcept : stream_(&stream), flush_(flush) {}
    OStream(OStream const&) = delete;
    OStream& operator=(OStream const&) = delete;
    ~OStream();

    void put(char character) {
        if (used_ == buffer_.size()) pass();
        buffer_[used_++] = character;
    }
    void write(std::string_view text) {
        if (text.size() > buffer_.size() - used_) return writeLong(text);
        std::memcpy(buffer_.data() + used_, text.data(), text.size());
        used_ += text.size();
    }

    /// Formats as `printf` does, but with a point as decimal mark in every locale.
    [[gnu::format(printf, 2, 3)]] void print(char const* format, ...);
    [[gnu::format(printf, 2, 0)]] void printArg(char const* format, va_list arguments);

    /// Hands everything to the stream. The result is the first error there was, now or earlier.
    urUtil::Error flush();
    [[nodiscard]] urUtil::Error const& error() const noexcept { return error_; }

protected:
    /// No stream yet: text is dropped.
    explicit OStream(Flush flush) noexcept : flush_(flush) {}
    /// From here on text goes to `stream`, which may be null. What was collected goes to the former one first.
    void redirect(IOStream* stream);

private:
    void pass();
    void send(std::string_view text);
    void writeLong(std::string_view text);

    IOStream* stream_ = nullptr;
    Flush flush_;
    urUtil::Error error_;
    std::size_t used_ = 0;
    std::array<char, 4096> buffer_;
};

}  // namespace urOS
