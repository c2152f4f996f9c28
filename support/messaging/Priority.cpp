// Compares priorities.
#include "support/messaging/Priority.h"

namespace nxSupport {

int compare(Priority const& a, Priority const& b) noexcept {
    if (a.unit() != b.unit()) return a.unit() < b.unit() ? -1 : 1;
    if (a.module() != b.module()) return a.module() < b.module() ? -1 : 1;
    return 0;
}

}  // namespace nxSupport
