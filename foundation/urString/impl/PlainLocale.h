// Sets the "C" locale for one thread.
#pragma once

#include <clocale>

#if defined(__APPLE__)
#include <xlocale.h>
#elif defined(_WIN32)
#include <string>
#endif

namespace urString::impl {

/// While this lives, the calling thread formats and parses in the "C" locale; other threads are not affected.
class PlainLocale {
public:
    PlainLocale(PlainLocale const&) = delete;
    PlainLocale& operator=(PlainLocale const&) = delete;

#if defined(_WIN32)
    PlainLocale() : mode_(_configthreadlocale(_ENABLE_PER_THREAD_LOCALE)), former_(std::setlocale(LC_ALL, nullptr)) {
        std::setlocale(LC_ALL, "C");
    }
    ~PlainLocale() {
        std::setlocale(LC_ALL, former_.c_str());
        _configthreadlocale(mode_);
    }

private:
    int mode_;
    std::string former_;
#else
    PlainLocale() : former_(uselocale(plain())) {}
    ~PlainLocale() { uselocale(former_); }

private:
    static locale_t plain() {
        static locale_t const locale = newlocale(LC_ALL_MASK, "C", locale_t());
        return locale;
    }
    locale_t former_;
#endif
};

}  // namespace urString::impl
