// The process's resident memory on Linux.
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

#include "foundation/urOS/impl/residentMemory.h"

namespace urOS::impl {

std::uint64_t residentBytes() noexcept {
    int const file = ::open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
    if (file < 0) return 0;
    // Numbers of pages: the address space, the resident part, then more.
    std::array<char, 128> text{};
    ssize_t const size = ::read(file, text.data(), text.size() - 1);
    ::close(file);
    if (size <= 0) return 0;
    char* second = nullptr;
    static_cast<void>(std::strtoull(text.data(), &second, 10));
    return std::strtoull(second, nullptr, 10) * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
}

}  // namespace urOS::impl
