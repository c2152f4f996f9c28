// The events of transfers, and the codes of failures.
#pragma once

#include <cstdint>
#include <variant>

#include "foundation/ur/containers.h"
#include "foundation/urString/CString.h"
#include "foundation/urThread/Buffer.h"

namespace nxhost {

/// The failure codes of transfers, `error` of a connection. docs/embedding.md explains them.
enum class TransferError : int {
    refused = 1,         ///< the request cannot be sent, or its scheme is not allowed
    nameUnknown = 2,     ///< no address for the host's name
    notReached = 3,      ///< no server accepts the connection
    notTrusted = 4,      ///< no secure connection, or an untrusted certificate
    tooSlow = 5,         ///< a time limit has passed
    broken = 6,          ///< no answer, an invalid one, or one that ends too early
    tooManyHops = 7,     ///< redirected too often
    fileUnreadable = 8,  ///< the file for upload
    other = 9,
    tooLarge = 10,  ///< the answer's body or headers exceed the limit
};

/// Header fields of an answer by lower-case name. Repeated fields are joined by ", ", cookies by line ends.
using Headers = ur::map<urString::CString, urString::CString>;

struct Reached {};
struct Answered {
    int status;
    Headers headers;
};
struct Received {
    ur::Reference<urThread::Buffer> data;
};
/// In bytes; a total is 0 while it is unknown.
struct Progressed {
    std::int64_t received = 0;
    std::int64_t receiveTotal = 0;
    std::int64_t sent = 0;
    std::int64_t sendTotal = 0;

    bool operator==(Progressed const&) const = default;
};
struct Completed {};
struct Failed {
    TransferError error;
    urString::CString text;
};

using TransferEvent = std::variant<Reached, Answered, Received, Progressed, Completed, Failed>;

}  // namespace nxhost
