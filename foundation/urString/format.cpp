// printf-style formatting that no locale can change.
#include <cstdio>

#include "foundation/urString/CString.h"
#include "foundation/urString/impl/PlainLocale.h"

namespace urString {

CString CString::vformat(char const* format, va_list arguments) {
    impl::PlainLocale const plain;
    char brief[256];
    va_list again;
    va_copy(again, arguments);
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): the caller's va_start, which the analyzer overlooks
    int const length = std::vsnprintf(brief, sizeof brief, format, arguments);
    CString result;
    if (length > 0 && std::size_t(length) < sizeof brief) {
        result.assign(brief, std::size_t(length));
    } else if (length > 0) {
        result.resize(std::size_t(length));
        std::vsnprintf(result.data(), result.size() + 1, format, again);
    }
    va_end(again);
    return result;
}

CString CString::format(char const* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    CString result = vformat(format, arguments);
    va_end(arguments);
    return result;
}

}  // namespace urString
