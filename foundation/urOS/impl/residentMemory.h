// The process's resident memory; one source file per platform.
#pragma once

#include <cstdint>

namespace urOS::impl {

/// In bytes; 0 where the system does not tell.
std::uint64_t residentBytes() noexcept;

}  // namespace urOS::impl
