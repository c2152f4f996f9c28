// Buffers the bytes that a read context takes from a stream.
#include "foundation/io/ioBufferedStreamInput.h"

#include <cstring>

urUtil::Error ioBufferedStreamInput::openIOStream(urOS::IOStream& stream) {
    stream_ = &stream;
    if (!buffer_) buffer_ = std::make_unique_for_overwrite<char[]>(bufferBytes_ + padding);
    cursor_ = buffer_.get();
    endAt(buffer_.get());
    fetched_ = 0;
    atEnd_ = false;
    error_ = urUtil::Error();
    return {};
}

urUtil::Error ioBufferedStreamInput::close() {
    abandon();
    stream_ = nullptr;
    return error_;
}

void ioBufferedStreamInput::abandon() noexcept {
    fetched_ = position();
    if (buffer_) endAt(buffer_.get() + (cursor_ - buffer_.get()));
    atEnd_ = true;
}

void ioBufferedStreamInput::endAt(char* end) noexcept {
    std::memset(end, 0, padding);
    end_ = end;
}

bool ioBufferedStreamInput::fetch(std::size_t bytes) {
    if (atEnd_) return false;
    std::size_t kept = available();
    std::memmove(buffer_.get(), cursor_, kept);
    while (kept < bytes && !atEnd_) {
        std::size_t done = 0;
        error_ = stream_->read(buffer_.get() + kept, bufferBytes_ - kept, &done);
        atEnd_ = error_.isError() || done == 0;
        kept += done;
        fetched_ += done;
    }
    cursor_ = buffer_.get();
    endAt(buffer_.get() + kept);
    return kept >= bytes;
}
