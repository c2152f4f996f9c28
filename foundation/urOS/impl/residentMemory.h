// The process's resident memory; one source file per platform.
#pragma once

#include <cstdint>

namespace urOS::impl {

/// In bytes; 0 if the system does not report it.
std::uint64_t residentBytes() noexcept;

}  // namespace urOS::impl
