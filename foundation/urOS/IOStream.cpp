// The common part of all byte streams.
#include "foundation/urOS/IOStream.h"

#include <array>

namespace urOS {

IOStream::~IOStream() = default;

urUtil::Error IOStream::readAll(urString::CString& text) {
    std::array<char, 16 * 1024> buffer;
    for (;;) {
        std::size_t done = 0;
        urUtil::Error error = read(buffer.data(), buffer.size(), &done);
        text.append(buffer.data(), done);
        if (error.isError() || done == 0) return error;
    }
}

}  // namespace urOS
