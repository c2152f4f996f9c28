// Finds function names by demangling and through the dynamic linker.
#include "foundation/ur/functionName.h"

#include <cstdint>
#include <cstdio>
#include <string_view>

#include "foundation/ur/impl/demangle.h"

#if defined(__GNUG__)
#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#endif
#if !defined(_WIN32)
#include <dlfcn.h>
#endif

namespace ur {

namespace {

std::string hexadecimal(std::uintptr_t number) {
    char text[2 + 2 * sizeof number + 1];
    std::snprintf(text, sizeof text, "0x%jx", static_cast<std::uintmax_t>(number));
    return text;
}

}  // namespace

std::string impl::demangle(char const* name) {
#if defined(__GNUG__)
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> text(abi::__cxa_demangle(name, nullptr, nullptr, &status), &std::free);
    if (status == 0) return text.get();
#endif
    return name;
}

std::string functionName(void (*function)()) {
    auto const address = reinterpret_cast<std::uintptr_t>(function);
#if !defined(_WIN32)
    Dl_info info;
    if (dladdr(reinterpret_cast<void const*>(function), &info)) {
        if (info.dli_sname && info.dli_saddr == reinterpret_cast<void const*>(function))
            return impl::demangle(info.dli_sname);
        std::string_view const file = info.dli_fname;
        return std::string(file.substr(file.rfind('/') + 1)) + "+" +
               hexadecimal(address - reinterpret_cast<std::uintptr_t>(info.dli_fbase));
    }
#endif
    return hexadecimal(address);
}

}  // namespace ur
