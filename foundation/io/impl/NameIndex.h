// Finds a text among those that a file has named lately.
#pragma once

#include "foundation/io/ioNameTable.h"

namespace ioImpl {

/// Finds the place of a text. One that shares its hash with a later one may be found no longer, which costs only the
/// room to name it again.
class NameIndex {
public:
    static constexpr std::size_t none = ioNameTable::places;

    [[nodiscard]] std::size_t find(std::string_view name) const noexcept;
    void remember(std::string_view name) noexcept;

private:
    static constexpr std::size_t slots = 1024;

    [[nodiscard]] static std::size_t slotOf(std::string_view name) noexcept;

    ioNameTable table_;
    std::array<std::uint8_t, slots> placeOfSlot_{};
};

}  // namespace ioImpl
