// The fonts folder of Linux systems.
#include <filesystem>
#include <system_error>

#include "support/services/fontsPath.h"

namespace nxSupport {

urOS::Filename getFontsPath() {
    constexpr char const* folder = "/usr/share/fonts";
    std::error_code error;
    return std::filesystem::is_directory(folder, error) ? urOS::Filename(urString::IString(folder)) : urOS::Filename();
}

}  // namespace nxSupport
