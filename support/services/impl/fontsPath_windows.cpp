// The fonts folder of Windows.
#include <windows.h>

#include <knownfolders.h>
#include <shlobj.h>

#include <memory>

#include "support/services/fontsPath.h"

namespace nxSupport {

urOS::Filename getFontsPath() {
    wchar_t* folder = nullptr;
    bool const known = ::SHGetKnownFolderPath(FOLDERID_Fonts, 0, nullptr, &folder) == S_OK;
    std::unique_ptr<wchar_t, decltype(&::CoTaskMemFree)> const release(folder, &::CoTaskMemFree);
    return known ? urOS::Filename(urString::IString(folder)) : urOS::Filename();
}

}  // namespace nxSupport
