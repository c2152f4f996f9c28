// Everything that a database has to offer, written down.
#pragma once

#include "foundation/nxRFL/Database.h"

namespace nxRFL {

enum class ListingFormat {
    text,      ///< for people: a line for each class and member
    json,      ///< an object with the arrays "classes" and "tables"
    luaStubs,  ///< Lua declarations with the annotations from which editors complete and check scripts
};

/// Every class, member and function with its signature, in the order of registration.
[[nodiscard]] NX_API urString::CString listing(Database const& database, ListingFormat format);

}  // namespace nxRFL
