// says: a text is taken as a std::string, std::string_view or urString::CString
#include "foundation/nxRFL/ExposeFunction.h"

void expose(nxRFL::Database& database) {
    nxRFL::ExposeFunction(database, "studio").add("show", [](char const* text) { return text != nullptr; });
}
