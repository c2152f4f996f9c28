// The output of the application's own messages.
#pragma once

#include <memory>

#include "foundation/ur/Export.h"
#include "foundation/urOS/OStream.h"
#include "foundation/urString/IString.h"

namespace urOS {

/// A text output that can be redirected while it is in use. Every print is flushed at once.
///
/// A new one prints to standard output, in order with `printf`. One thread at a time.
class NX_API AppOutputStream : public OStream {
public:
    AppOutputStream();
    ~AppOutputStream();

    /// Redirects to the file of that name, at its end if `append`, otherwise emptied; "-" is standard output. After a
    /// failure text is dropped.
    urUtil::Error open(urString::IString const& name, bool append);
    /// Redirects to `stream`, which the caller owns.
    void open(IOStream& stream);

private:
    std::unique_ptr<IOStream> own_;
};

/// The application's output.
class NX_API AppOutput {
public:
    /// The only instance, which lives as long as the process.
    static AppOutputStream& getInstance();
};

}  // namespace urOS
