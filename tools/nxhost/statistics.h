// What the services have done, as text.
#pragma once

#include "foundation/nxTXN/Manager.h"
#include "foundation/urString/CString.h"
#include "krcache/Manager.h"

namespace nxhost {

[[nodiscard]] urString::CString statisticsText(urKRCache::Manager const& cache, nxTXN::Manager const& history);

}  // namespace nxhost
