// Locks of a byte behind the content.
#include "support/documents/impl/lockFile.h"

#include <io.h>
#include <windows.h>

namespace nxSupport::impl {

bool lockFile(urOS::File const& file) noexcept {
    auto const handle = reinterpret_cast<HANDLE>(::_get_osfhandle(file.descriptor()));
    OVERLAPPED place{};
    place.OffsetHigh = 0x7FFFFFFF;  // far behind the content, which others may read
    return ::LockFileEx(handle, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place) != 0;
}

}  // namespace nxSupport::impl
