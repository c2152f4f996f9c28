// Facts about the process and the machine.
#pragma once

#include <cstdint>

#include "foundation/ur/Export.h"

namespace urOS {

/// Queries the system on every call. Any thread.
class NX_API SysInfo {
public:
    /// The resident memory of the process in KiB; 0 if the system does not report it.
    [[nodiscard]] std::uint64_t processResidentMemory() const noexcept;
};

[[nodiscard]] NX_API SysInfo const& sysInfo() noexcept;

}  // namespace urOS
