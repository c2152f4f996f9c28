// Splits and joins paths.
#include "foundation/urOS/Filename.h"

namespace urOS {
namespace {

using urString::IString;

#if defined(_WIN32)
constexpr std::u32string_view separators = U"/\\";
#else
constexpr std::u32string_view separators = U"/";
#endif

bool isSeparator(char32_t character) { return separators.find(character) != std::u32string_view::npos; }

std::size_t lastSeparator(IString const& path) { return path.view().find_last_of(separators); }

}  // namespace

bool Filename::isAbsolute() const noexcept {
#if defined(_WIN32)
    if (path_.size() > 1 && path_[1] == U':') return true;
#endif
    return isSeparator(path_[0]);
}

Filename Filename::join(IString const& folder, IString const& name) {
    if (folder.empty() || Filename(name).isAbsolute()) return name;
    IString path = folder;
    if (!isSeparator(path[path.size() - 1])) path.append(separators.front());
    return path.append(name);
}

IString Filename::basename() const {
    std::size_t const separator = lastSeparator(path_);
    return separator == IString::npos ? path_ : path_.substr(separator + 1);
}

Filename Filename::directory() const {
    std::size_t const separator = lastSeparator(path_);
    if (separator == IString::npos) return {};
    return path_.substr(0, separator == 0 ? 1 : separator);
}

IString Filename::extension() const {
    IString const name = basename();
    std::size_t const dot = name.rfind(U'.');
    return dot == IString::npos || dot == 0 ? IString() : name.substr(dot + 1);
}

}  // namespace urOS
