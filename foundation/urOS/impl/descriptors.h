// Opens file descriptors.
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

/// The fault of a file name, if any. The system would use only the part before a NUL: another file.
inline urUtil::Error faultOfName(std::string_view name) {
    if (name.empty()) return urUtil::Error::fromSystem(ENOENT, "a file without a name");
    std::size_t const end = name.find('\0');
    return end == std::string_view::npos ? urUtil::Error() : urUtil::Error::fromSystem(EINVAL, name.substr(0, end));
}

/// A binary-mode descriptor that no child process inherits; -1, with `errno` set, on failure.
inline int openDescriptor(std::filesystem::path const& path, int flags, int permissions) {
#if defined(_WIN32)
    return ::_wopen(path.c_str(), flags | _O_BINARY | _O_NOINHERIT, permissions);
#else
    return ::open(path.c_str(), flags | O_CLOEXEC, permissions);
#endif
}

/// Not 0, with `errno` set, if the written data may not be on the disk.
inline int flushToDisk(int descriptor) {
#if defined(_WIN32)
    return ::_commit(descriptor);
#else
    return ::fsync(descriptor);
#endif
}

/// Switches a descriptor opened elsewhere to binary mode.
inline void carryBytes([[maybe_unused]] int descriptor) {
#if defined(_WIN32)
    ::_setmode(descriptor, _O_BINARY);
#endif
}

}  // namespace urOS::impl
