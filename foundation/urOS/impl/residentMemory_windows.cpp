// The process's resident memory on Windows.
#define PSAPI_VERSION 2  // part of the system's core library
#include <windows.h>

#include <psapi.h>

#include "foundation/urOS/impl/residentMemory.h"

namespace urOS::impl {

std::uint64_t residentBytes() noexcept {
    PROCESS_MEMORY_COUNTERS counters = {};
    return ::GetProcessMemoryInfo(::GetCurrentProcess(), &counters, sizeof(counters)) ? counters.WorkingSetSize : 0;
}

}  // namespace urOS::impl
