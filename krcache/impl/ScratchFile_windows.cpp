// Scratch files on Windows, opened without sharing.
#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <limits>
#include <system_error>

#include "krcache/impl/ScratchFile.h"

namespace urKRCache {
namespace {

using urUtil::Error;

HANDLE handleOf(int descriptor) { return reinterpret_cast<HANDLE>(::_get_osfhandle(descriptor)); }

Error lastError(char const* what) {
    return Error::fromSystem(std::error_code(static_cast<int>(::GetLastError()), std::system_category()), what);
}

/// Moves all bytes by repeating `move`, a system call that reads or writes at a position.
template <class Move, class Byte>
Error moveAll(Move move, int descriptor, std::uint64_t position, Byte* bytes, std::size_t count, char const* what) {
    for (std::size_t done = 0; done < count;) {
        OVERLAPPED place = {};
        place.Offset = static_cast<DWORD>(position + done);
        place.OffsetHigh = static_cast<DWORD>((position + done) >> 32);
        auto const most = static_cast<DWORD>(std::min<std::size_t>(count - done, 1U << 30));
        DWORD moved = 0;
        if (!move(handleOf(descriptor), bytes + done, most, &moved, &place)) return lastError(what);
        if (moved == 0) return Error(0, "the file is shorter than what was written");
        done += moved;
    }
    return {};
}

}  // namespace

ScratchFile::~ScratchFile() {
    if (!isOpen()) return;
    FILE_DISPOSITION_INFO deleted = {TRUE};
    ::SetFileInformationByHandle(handleOf(descriptor_), FileDispositionInfo, &deleted, sizeof(deleted));
    ::_close(descriptor_);
}

Error ScratchFile::open(std::string const& path) {
    path_ = path;
    // No sharing. A link is opened itself, and then refused.
    constexpr DWORD flags = FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_OPEN_REPARSE_POINT;
    HANDLE const file = ::CreateFileW(std::filesystem::path(path).c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, 0,
                                      nullptr, OPEN_ALWAYS, flags, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return ::GetLastError() == ERROR_SHARING_VIOLATION ? Error(EWOULDBLOCK, "another manager uses the file")
                                                           : lastError("open");
    }
    BY_HANDLE_FILE_INFORMATION facts = {};
    bool const known = ::GetFileInformationByHandle(file, &facts) != 0;
    if (!known || facts.nNumberOfLinks > 1 || (facts.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
        ::CloseHandle(file);
        return Error(EACCES, "the name is taken by something that is not a file of this user alone");
    }
    ::SetEndOfFile(file);
    descriptor_ = ::_open_osfhandle(reinterpret_cast<intptr_t>(file), _O_BINARY);
    return {};
}

std::uint64_t ScratchFile::sizeLimit() noexcept { return std::numeric_limits<std::int64_t>::max(); }

Error ScratchFile::writeAt(std::uint64_t position, char const* bytes, std::size_t count) noexcept {
    return moveAll(::WriteFile, descriptor_, position, bytes, count, "write");
}

Error ScratchFile::readAt(std::uint64_t position, char* bytes, std::size_t count) noexcept {
    return moveAll(::ReadFile, descriptor_, position, bytes, count, "read");
}

}  // namespace urKRCache
