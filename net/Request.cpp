// Filling in requests.
#include "net/Request.h"

namespace nxNet {

using urString::CString;

Request::~Request() = default;

void Request::put(Fields& fields, CString const& name, CString const& value) {
    // Copies, since what is added may be a text of the same fields, and these move. The value's is made first.
    fields[CString(name)] = CString(value);
}

}  // namespace nxNet
