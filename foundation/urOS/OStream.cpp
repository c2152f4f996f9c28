// Implements text output on a byte stream.
#include "foundation/urOS/OStream.h"

#include <utility>

#include "foundation/urString/CString.h"

namespace urOS {

OStream::~OStream() {
    try {
        pass();
    } catch (...) {  // NOLINT(bugprone-empty-catch): a destructor cannot report
    }
}

void OStream::send(std::string_view text) {
    if (stream_ && error_.ok() && !text.empty()) error_ = stream_->write(text.data(), text.size());
}

void OStream::pass() { send({buffer_.data(), std::exchange(used_, 0)}); }

void OStream::writeLong(std::string_view text) {
    pass();
    if (text.size() > buffer_.size()) return send(text);
    write(text);
}

void OStream::print(char const* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    printArg(format, arguments);
    va_end(arguments);
}

void OStream::printArg(char const* format, va_list arguments) {
    write(urString::CString::vformat(format, arguments));
    if (flush_ == Flush::afterEachPrint) pass();
}

urUtil::Error OStream::flush() {
    pass();
    return error_;
}

void OStream::redirect(IOStream* stream) {
    pass();
    stream_ = stream;
    error_ = urUtil::Error();
}

}  // namespace urOS
