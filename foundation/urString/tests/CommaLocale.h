// A locale whose decimal mark is a comma, for tests of what must not depend on the locale.
#pragma once

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace test {

/// While it lives, the process is in a locale with a decimal comma, compiled for the occasion; `active` is false
/// where the system has no means to compile one (on Debian: the package locales).
class CommaLocale {
public:
    CommaLocale() : former_(std::setlocale(LC_ALL, nullptr)) {
        std::string folder = (std::filesystem::temp_directory_path() / "localeXXXXXX").string();
        if (!mkdtemp(folder.data())) return;
        std::string const compile = "localedef -f UTF-8 -i de_DE " + folder + "/de_DE.UTF-8 >/dev/null 2>&1";
        if (std::system(compile.c_str()) == 0 && setenv("LOCPATH", folder.c_str(), 1) == 0) {
            active_ = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
        }
        unsetenv("LOCPATH");
        std::filesystem::remove_all(folder);
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
