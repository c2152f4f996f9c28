// New files on systems where access rights come from the folder.
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/urOS/Uuid.h"
#include "foundation/urOS/impl/descriptors.h"
#include "foundation/urOS/impl/newFile.h"

namespace urOS::impl {

bool mayWrite(std::filesystem::path const& file) { return ::_waccess(file.c_str(), W_OK) == 0; }

int openNew(std::filesystem::path const& name, int permissions, bool& isNamed) {
    isNamed = true;
    return openDescriptor(name, O_RDWR | O_CREAT | O_EXCL, permissions & (S_IREAD | S_IWRITE));
}

bool giveName(int /*descriptor*/, std::filesystem::path const& /*name*/) { return false; }

int openScratch() {
    Uuid id;
    id.generate();
    std::error_code none;
    auto const name = std::filesystem::temp_directory_path(none) / id.asString().c_str();
    return openDescriptor(name, O_RDWR | O_CREAT | O_EXCL | _O_TEMPORARY, S_IREAD | S_IWRITE);
}

int openRegular(std::filesystem::path const& file) { return openDescriptor(file, O_WRONLY, 0); }

bool resemble(int /*descriptor*/, std::filesystem::path const& former) {
    std::error_code unknown;
    return std::filesystem::hard_link_count(former, unknown) <= 1;
}

bool reserve(int /*descriptor*/, std::uint64_t /*bytes*/) { return true; }

bool resize(int descriptor, std::uint64_t bytes) {
    errno = ::_chsize_s(descriptor, static_cast<long long>(bytes));
    return errno == 0;
}

urUtil::Error syncFolder(std::filesystem::path const& /*folder*/) { return {}; }

}  // namespace urOS::impl
