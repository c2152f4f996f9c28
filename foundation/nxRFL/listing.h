// Lists everything that a database offers to scripts.
#pragma once

#include "foundation/nxRFL/Database.h"

namespace nxRFL {

enum class ListingFormat {
    text,      ///< for people: a line for each class and member
    json,      ///< an object with the arrays "classes" and "tables"
    luaStubs,  ///< Lua declarations with annotations that editors use for completion and checks
};

/// Every class, member and function with its signature, in the order of registration.
[[nodiscard]] NX_API urString::CString listing(Database const& database, ListingFormat format);

}  // namespace nxRFL
