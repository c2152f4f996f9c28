// Advisory locks of whole files.
#include "support/documents/impl/lockFile.h"

#include <sys/file.h>

namespace nxSupport::impl {

bool lockFile(urOS::File const& file) noexcept { return ::flock(file.descriptor(), LOCK_EX | LOCK_NB) == 0; }

}  // namespace nxSupport::impl
