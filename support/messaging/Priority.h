// The order in which the subscribers of a message are called.
#pragma once

#include <cstdint>

#include "foundation/ur/Export.h"

namespace nxSupport {

/// The parts of a priority. The host defines both; any value can be cast to them.
enum UnitID : std::int32_t { LibraryUnit = 0, DefaultUnit = 18 };
enum ModuleID : std::int32_t { LibraryModule = 0, DefaultModule = 3 };

/// A subscriber's place among those of its message: by unit first, then by module. A value.
class Priority {
public:
    Priority() noexcept = default;
    Priority(UnitID unit, ModuleID module) noexcept : unit_(unit), module_(module) {}

    [[nodiscard]] UnitID unit() const noexcept { return unit_; }
    [[nodiscard]] ModuleID module() const noexcept { return module_; }

private:
    UnitID unit_ = DefaultUnit;
    ModuleID module_ = DefaultModule;
};

/// Returns -1, 0 or 1 if `a` comes before, with or after `b`. Numbers compare as signed.
[[nodiscard]] NX_API int compare(Priority const& a, Priority const& b) noexcept;

[[nodiscard]] inline bool operator==(Priority const& a, Priority const& b) noexcept { return compare(a, b) == 0; }
[[nodiscard]] inline bool operator!=(Priority const& a, Priority const& b) noexcept { return compare(a, b) != 0; }
[[nodiscard]] inline bool operator<(Priority const& a, Priority const& b) noexcept { return compare(a, b) < 0; }
[[nodiscard]] inline bool operator>(Priority const& a, Priority const& b) noexcept { return compare(a, b) > 0; }

}  // namespace nxSupport
