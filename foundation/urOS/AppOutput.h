// Where the application's own messages go.
#pragma once

#include <memory>

#include "foundation/ur/Export.h"
#include "foundation/urOS/OStream.h"
#include "foundation/urString/IString.h"

namespace urOS {

/// A text output that can be pointed somewhere else while it is in use. Every print arrives at once.
///
/// A new one prints to the standard output, in order with what `printf` prints. One thread at a time.
class NX_API AppOutputStream : public OStream {
public:
    AppOutputStream();
    ~AppOutputStream();

    /// Goes on in the file of that name, at its end if `append`, otherwise emptied; "-" is the standard output.
    /// After a failure text is dropped.
    urUtil::Error open(urString::IString const& name, bool append);
    /// Goes on in `stream`, which is not owned.
    void open(IOStream& stream);

private:
    std::unique_ptr<IOStream> own_;
};

/// The application's output.
class NX_API AppOutput {
public:
    /// The only one, for as long as the process runs.
    static AppOutputStream& getInstance();
};

}  // namespace urOS
