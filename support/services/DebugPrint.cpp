// Prints indented text for nested functions.
#include "support/services/DebugPrint.h"

#include <string_view>

namespace nxSupport {

ur::vector<char const*> DebugPrint::s_functions;

void DebugPrint::operator()(char const* format, ...) {
    if (!enabled_) return;
    va_list arguments;
    va_start(arguments, format);
    debug_.vprint(code_, true, format, arguments);
    va_end(arguments);
    if (!printed_) enter();
}

void DebugPrint::enter() {
    s_functions.push_back(function_);
    printed_ = true;
    if (!isSameFunction()) debug_.incrementIndent();
}

void DebugPrint::leave() noexcept {
    if (!isSameFunction()) debug_.decrementIndent();
    s_functions.pop_back();
}

/// Whether the last two printers that have printed belong to the same function.
bool DebugPrint::isSameFunction() {
    std::size_t const count = s_functions.size();
    return count >= 2 && std::string_view(s_functions[count - 1]) == s_functions[count - 2];
}

}  // namespace nxSupport
