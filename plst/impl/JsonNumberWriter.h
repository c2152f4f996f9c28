// Numbers as JSON text, in the two precisions that the writers use.
#pragma once

#include <cstddef>

namespace nxPLST::impl {

/// Room that either function may need behind `to`, its working space included.
inline constexpr std::size_t numberRoom = 48;

/// Writes what "%.20g" prints in the C locale; gives the end of the text. Requires: a finite value.
char* writeExactNumber(char* to, double value) noexcept;

/// Writes what "%g" prints in the C locale, NaN and infinities included; gives the end of the text.
char* writeShortNumber(char* to, double value) noexcept;

}  // namespace nxPLST::impl
