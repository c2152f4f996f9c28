// New files where access comes from the folder that they lie in.
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/urOS/impl/descriptors.h"
#include "foundation/urOS/impl/newFile.h"

namespace urOS::impl {

bool mayWrite(std::filesystem::path const& file) { return ::_waccess(file.c_str(), W_OK) == 0; }

int openNew(std::filesystem::path const& name, int permissions, bool& isNamed) {
    isNamed = true;
    return openDescriptor(name, O_WRONLY | O_CREAT | O_EXCL, permissions & (S_IREAD | S_IWRITE));
}

bool giveName(int /*descriptor*/, std::filesystem::path const& /*name*/) { return false; }

urUtil::Error resemble(int /*descriptor*/, std::filesystem::path const& /*former*/) { return {}; }

}  // namespace urOS::impl
