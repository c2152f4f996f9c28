// A locale with a decimal comma, for tests of locale independence.
#pragma once

#include <clocale>
#include <cstdlib>
#include <string>

#include "foundation/ur/tests/TemporaryFolder.h"

namespace test {

/// While it lives, the process uses a locale with a decimal comma, compiled for the test; `active` is false if the
/// system cannot compile one (on Debian: the package locales).
class CommaLocale {
public:
    CommaLocale() : former_(std::setlocale(LC_ALL, nullptr)) {
#if defined(_WIN32)
        active_ = std::setlocale(LC_ALL, "German_Germany") != nullptr;
#else
        TemporaryFolder const folder;
        std::string const compile = "localedef -f UTF-8 -i de_DE " + (folder / "de_DE.UTF-8").string();
        if (std::system((compile + " >/dev/null 2>&1").c_str()) == 0 &&
            setenv("LOCPATH", folder.path().c_str(), 1) == 0) {
            active_ = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
        }
        unsetenv("LOCPATH");
#endif
    }
    CommaLocale(CommaLocale const&) = delete;
    CommaLocale& operator=(CommaLocale const&) = delete;
    ~CommaLocale() { std::setlocale(LC_ALL, former_.c_str()); }

    [[nodiscard]] bool active() const { return active_; }

private:
    std::string former_;
    bool active_ = false;
};

}  // namespace test
