// Removes the blanks around a text.
#pragma once

#include <string_view>

namespace nxhost {

inline std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    std::size_t const first = text.find_first_not_of(blanks);
    if (first == text.npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

}  // namespace nxhost
