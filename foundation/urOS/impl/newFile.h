// New files that are to take the place of others; one source file per family of systems.
#pragma once

#include <cstdint>
#include <filesystem>

#include "foundation/urUtil/Error.h"

namespace urOS::impl {

// Those that can fail leave the reason in `errno`.

[[nodiscard]] bool mayWrite(std::filesystem::path const& file);

/// Opens a new file for writing and reading. It has `name`, or no name yet: then nothing is left of it when the process
/// dies. A descriptor; negative if there is none.
[[nodiscard]] int openNew(std::filesystem::path const& name, int permissions, bool& isNamed);
/// Gives a file without a name its first one.
[[nodiscard]] bool giveName(int descriptor, std::filesystem::path const& name);
/// Opens a new file in the folder for temporary files, which is gone when it is closed.
[[nodiscard]] int openScratch();
/// Opens an existing file for writing. Fails for links, and waits for nothing.
[[nodiscard]] int openRegular(std::filesystem::path const& file);

/// Makes a new file like the one that it is to replace: owner, permissions, extended attributes. False when something
/// of that cannot be had, or when the former file has other names, which would go on naming it.
[[nodiscard]] bool resemble(int descriptor, std::filesystem::path const& former);

/// Makes sure that the disk has room for a file of that size, as far as the system can tell.
[[nodiscard]] bool reserve(int descriptor, std::uint64_t bytes);
[[nodiscard]] bool resize(int descriptor, std::uint64_t bytes);

/// Flushes the names in a folder to the disk. Success where the system gives no way to.
urUtil::Error syncFolder(std::filesystem::path const& folder);

}  // namespace urOS::impl
