// Buffers the bytes that a write context sends to a stream.
#include "foundation/io/ioBufferedStreamOutput.h"

#include <utility>

ioBufferedStreamOutput::~ioBufferedStreamOutput() {
    try {
        static_cast<void>(close());
    } catch (...) {  // NOLINT(bugprone-empty-catch): a destructor cannot report
    }
}

urUtil::Error ioBufferedStreamOutput::openIOStream(urOS::IOStream& stream) {
    urUtil::Error former = close();
    stream_ = &stream;
    buffer_ = std::make_unique_for_overwrite<char[]>(bufferBytes_);
    cursor_ = buffer_.get();
    end_ = cursor_ + bufferBytes_;
    passed_ = 0;
    error_ = urUtil::Error();
    return former;
}

urUtil::Error ioBufferedStreamOutput::close() {
    if (stream_) pass();
    stream_ = nullptr;
    return error_;
}

urUtil::Error ioBufferedStreamOutput::flush() {
    if (stream_) pass();
    return error_;
}

void ioBufferedStreamOutput::send(std::string_view bytes) {
    if (error_.ok() && !bytes.empty()) error_ = stream_->write(bytes.data(), bytes.size());
    passed_ += bytes.size();
}

void ioBufferedStreamOutput::pass() {
    char const* const end = std::exchange(cursor_, buffer_.get());
    send({buffer_.get(), static_cast<std::size_t>(end - buffer_.get())});
}

void ioBufferedStreamOutput::writeAcross(std::string_view bytes) {
    pass();
    if (bytes.size() > bufferBytes_) return send(bytes);
    write(bytes);
}
