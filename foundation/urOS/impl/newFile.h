// New files that replace others; one source file per family of systems.
#pragma once

#include <cstdint>
#include <filesystem>

#include "foundation/urUtil/Error.h"

namespace urOS::impl {

// On failure these set `errno`.

[[nodiscard]] bool mayWrite(std::filesystem::path const& file);

/// Opens a new file for reading and writing. It has `name`, or no name yet: then it disappears if the process dies.
/// Returns a descriptor; negative on failure.
[[nodiscard]] int openNew(std::filesystem::path const& name, int permissions, bool& isNamed);
/// Gives a nameless file its name.
[[nodiscard]] bool giveName(int descriptor, std::filesystem::path const& name);
/// Opens a new file in the folder for temporary files; closing deletes it.
[[nodiscard]] int openScratch();
/// Opens an existing file for writing. Fails for links and never waits.
[[nodiscard]] int openRegular(std::filesystem::path const& file);

/// Gives a new file the owner, permissions and extended attributes of the file to replace. False when that is not
/// possible, or when the former file has other names, which would keep naming it.
[[nodiscard]] bool resemble(int descriptor, std::filesystem::path const& former);

/// Reserves disk space for a file of that size, as far as the system supports it.
[[nodiscard]] bool reserve(int descriptor, std::uint64_t bytes);
[[nodiscard]] bool resize(int descriptor, std::uint64_t bytes);

/// Flushes the names in a folder to the disk. Succeeds where the system has no such operation.
urUtil::Error syncFolder(std::filesystem::path const& folder);

}  // namespace urOS::impl
