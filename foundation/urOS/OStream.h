// Formatted text output on a byte stream.
#pragma once

#include <array>
#include <cstdarg>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "foundation/ur/Export.h"
#include "foundation/urOS/IOStream.h"

namespace urOS {

/// Collects text and passes it to a byte stream in large pieces.
///
/// The caller owns the stream, which must outlive this object. The destructor writes the rest; call `flush` before to
/// learn whether that worked. The first error stays, and all later text is dropped. One thread at a time.
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

    /// Formats as `printf` does, but with a decimal point in every locale.
    [[gnu::format(printf, 2, 3)]] void print(char const* format, ...);
    [[gnu::format(printf, 2, 0)]] void printArg(char const* format, va_list arguments);

    /// Passes all text to the stream. Returns the first error so far, if any.
    urUtil::Error flush();
    [[nodiscard]] urUtil::Error const& error() const noexcept { return error_; }

protected:
    /// Without a stream: text is dropped.
    explicit OStream(Flush flush) noexcept : flush_(flush) {}
    /// Sends later text to `stream`, which may be null. Collected text goes to the former stream first.
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
