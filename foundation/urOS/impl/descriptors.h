// Opening files as the system numbers them.
#pragma once

#include <fcntl.h>

#include <filesystem>

#if defined(_WIN32)
#include <io.h>
#endif

namespace urOS::impl {

/// A descriptor through which bytes go unchanged and which no child process gets; -1, and `errno`, if there is none.
inline int openDescriptor(std::filesystem::path const& path, int flags, int permissions) {
#if defined(_WIN32)
    return ::_wopen(path.c_str(), flags | _O_BINARY | _O_NOINHERIT, permissions);
#else
    return ::open(path.c_str(), flags | O_CLOEXEC, permissions);
#endif
}

/// Makes bytes go unchanged through a descriptor that somebody else opened.
inline void carryBytes([[maybe_unused]] int descriptor) {
#if defined(_WIN32)
    ::_setmode(descriptor, _O_BINARY);
#endif
}

}  // namespace urOS::impl
