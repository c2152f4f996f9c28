// Facts about the process and the machine.
#pragma once

#include <cstdint>

#include "foundation/ur/Export.h"

namespace urOS {

/// Asks the system anew on every call. Any thread.
class NX_API SysInfo {
public:
    /// The memory that the process occupies now, in KiB; 0 where the system does not tell.
    [[nodiscard]] std::uint64_t processResidentMemory() const noexcept;
};

[[nodiscard]] NX_API SysInfo const& sysInfo() noexcept;

}  // namespace urOS
