// Queries facts about the process and the machine.
#include "foundation/urOS/sysInfo.h"

#include "foundation/urOS/impl/residentMemory.h"

namespace urOS {

std::uint64_t SysInfo::processResidentMemory() const noexcept { return impl::residentBytes() / 1024; }

SysInfo const& sysInfo() noexcept {
    static constexpr SysInfo instance;
    return instance;
}

}  // namespace urOS
