// The base of byte streams.
#pragma once

#include <cstddef>

#include "foundation/ur/Export.h"
#include "foundation/urString/CString.h"
#include "foundation/urUtil/Error.h"

namespace urOS {

/// A source or a destination of bytes, or both.
///
/// One thread at a time. Derived classes define how a stream is opened and closed.
class NX_API IOStream {
public:
    virtual ~IOStream();

    /// Reads up to `count` bytes; `done` receives their number. Fewer is not a failure: 0 means the end, otherwise more
    /// bytes may follow.
    virtual urUtil::Error read(void* buffer, std::size_t count, std::size_t* done = nullptr) = 0;
    /// Writes all `count` bytes or fails; `done` receives the number written.
    virtual urUtil::Error write(void const* buffer, std::size_t count, std::size_t* done = nullptr) = 0;

    /// Appends everything up to the end of the stream to `text`.
    urUtil::Error readAll(urString::CString& text);

protected:
    IOStream() noexcept = default;
    IOStream(IOStream const&) noexcept = default;
    IOStream& operator=(IOStream const&) noexcept = default;
};

}  // namespace urOS
