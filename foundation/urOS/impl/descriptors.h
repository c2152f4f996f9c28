// Opening files as the system numbers them.
#pragma once

#include <fcntl.h>

#include <cerrno>
#include <filesystem>
#include <string_view>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

#include "foundation/urUtil/Error.h"

namespace urOS::impl {

/// What is wrong with the name of a file. The system would take what stands before a NUL: another file.
inline urUtil::Error faultOfName(std::string_view name) {
    if (name.empty()) return urUtil::Error::fromSystem(ENOENT, "a file without a name");
    std::size_t const end = name.find('\0');
    return end == std::string_view::npos ? urUtil::Error() : urUtil::Error::fromSystem(EINVAL, name.substr(0, end));
}

/// A descriptor through which bytes go unchanged and which no child process gets; -1, and `errno`, if there is none.
inline int openDescriptor(std::filesystem::path const& path, int flags, int permissions) {
#if defined(_WIN32)
    return ::_wopen(path.c_str(), flags | _O_BINARY | _O_NOINHERIT, permissions);
#else
    return ::open(path.c_str(), flags | O_CLOEXEC, permissions);
#endif
}

/// Not 0, and `errno`, if what was written through the descriptor may not be on the disk.
inline int flushToDisk(int descriptor) {
#if defined(_WIN32)
    return ::_commit(descriptor);
#else
    return ::fsync(descriptor);
#endif
}

/// Makes bytes go unchanged through a descriptor that somebody else opened.
inline void carryBytes([[maybe_unused]] int descriptor) {
#if defined(_WIN32)
    ::_setmode(descriptor, _O_BINARY);
#endif
}

}  // namespace urOS::impl
