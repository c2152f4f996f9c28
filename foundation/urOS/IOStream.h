// The byte stream that everything else reads from and writes to.
#pragma once

#include <cstddef>

#include "foundation/ur/Export.h"
#include "foundation/urString/CString.h"
#include "foundation/urUtil/Error.h"

namespace urOS {

/// A source or a destination of bytes, or both.
///
/// One thread at a time. What opens and closes a stream is its class's own matter.
class NX_API IOStream {
public:
    virtual ~IOStream();

    /// Reads up to `count` bytes; `done` tells how many. Fewer is no failure: none means the end, otherwise there
    /// may be more to come.
    virtual urUtil::Error read(void* buffer, std::size_t count, std::size_t* done = nullptr) = 0;
    /// Writes all `count` bytes or fails; `done` tells how many it wrote.
    virtual urUtil::Error write(void const* buffer, std::size_t count, std::size_t* done = nullptr) = 0;

    /// Appends everything up to the end of the stream to `text`.
    urUtil::Error readAll(urString::CString& text);

protected:
    IOStream() noexcept = default;
    IOStream(IOStream const&) noexcept = default;
    IOStream& operator=(IOStream const&) noexcept = default;
};

}  // namespace urOS
