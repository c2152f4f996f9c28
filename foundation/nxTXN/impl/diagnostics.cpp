// One line per class, on the application output.
#include "foundation/nxTXN/impl/diagnostics.h"

#ifndef NDEBUG
#include <mutex>
#include <set>
#include <utility>

#include "foundation/ur/TypeInfo.h"
#include "foundation/urOS/AppOutput.h"
#endif

namespace nxTXN::impl {

#ifdef NDEBUG

void reportUnrecorded(Object const& /*object*/, Unrecorded /*reason*/) {}

#else

void reportUnrecorded(Object const& object, Unrecorded reason) {
    static std::mutex mutex;
    static std::set<std::pair<ur::TypeInfo, Unrecorded>> reported;
    ur::TypeInfo const type = ur::TypeInfo::of(object);
    std::lock_guard const lock(mutex);
    if (!reported.emplace(type, reason).second) return;
    char const* const where = reason == Unrecorded::outside ? "outside a transaction" : "in a constant transaction";
    urOS::AppOutput::getInstance().print("%s changed %s: applied, not recorded\n", type.readableName().c_str(), where);
}

#endif

}  // namespace nxTXN::impl
