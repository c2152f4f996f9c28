// Filling in requests.
#include "net/Request.h"

#include <utility>

namespace nxNet {

Request::~Request() = default;

// By value: what is added may be a text of the same fields, and these move.
void Request::put(Fields& fields, urString::CString name, urString::CString value) {
    fields[std::move(name)] = std::move(value);
}

}  // namespace nxNet
