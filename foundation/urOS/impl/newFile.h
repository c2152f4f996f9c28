// New files that are to take the place of others; one source file per family of systems.
#pragma once

#include <filesystem>

#include "foundation/urUtil/Error.h"

namespace urOS::impl {

/// If not, `errno` tells why.
bool mayWrite(std::filesystem::path const& file);

/// Opens a new file for writing. It has `name`, or no name yet: then nothing is left of it when the process dies.
/// A descriptor; negative, and `errno`, if there is none.
int openNew(std::filesystem::path const& name, int permissions, bool& isNamed);
/// Gives a file without a name its first one; false, and `errno`, if it cannot.
bool giveName(int descriptor, std::filesystem::path const& name);

/// Gives a new file the permissions of the one it is to replace, and its owner if the process may.
urUtil::Error resemble(int descriptor, std::filesystem::path const& former);

}  // namespace urOS::impl
