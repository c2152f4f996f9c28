// A piece of work that one thread hands to another.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/urThread/ReferenceCount.h"

namespace urThread {

/// Work for a run queue; held by the thread that made it, by the queue, or by both.
class NX_API Runnable : public ReferenceCount {
public:
    /// Called once for each time the object was added to a queue, on the thread that services the queue.
    virtual void run() = 0;

protected:
    ~Runnable() override = default;
};

}  // namespace urThread
