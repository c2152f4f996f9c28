// printf-style formatting that no locale can change.
#include <clocale>
#include <cstdio>

#if defined(__APPLE__)
#include <xlocale.h>
#endif

#include "foundation/urString/CString.h"

namespace urString {

namespace {

/// The calling thread formats and parses in the "C" locale while this lives; no other thread notices.
class PlainLocale {
public:
    PlainLocale() : former_(uselocale(plain())) {}
    PlainLocale(PlainLocale const&) = delete;
    PlainLocale& operator=(PlainLocale const&) = delete;
    ~PlainLocale() { uselocale(former_); }

private:
    static locale_t plain() {
        static locale_t const locale = newlocale(LC_ALL_MASK, "C", locale_t());
        return locale;
    }
    locale_t former_;
};

}  // namespace

CString CString::vformat(char const* format, va_list arguments) {
    PlainLocale const plain;
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
