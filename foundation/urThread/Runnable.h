// Work that one thread passes to another.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/urThread/ReferenceCount.h"

namespace urThread {

/// Work for a run queue; held by the thread that created it, by the queue, or by both.
class NX_API Runnable : public ReferenceCount {
public:
    /// Called on the servicing thread, once for each time the object was added to a queue.
    virtual void run() = 0;

protected:
    ~Runnable() override = default;
};

}  // namespace urThread
