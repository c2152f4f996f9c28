// says: a text is taken as a std::string or a urString::CString
#include "foundation/nxRFL/ExposeFunction.h"

void expose(nxRFL::Database& database) {
    nxRFL::ExposeFunction(database, "studio").add("show", [](std::string_view text) { return text.size(); });
}
