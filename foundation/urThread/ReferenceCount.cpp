// The end of objects that threads share.
#include "foundation/urThread/ReferenceCount.h"

namespace urThread {

// Not inline: static analysis would see the deletion, not the count, and take every second use for one too late.
void ReferenceCount::unref() const noexcept {
    if (count_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

ReferenceCount::~ReferenceCount() = default;

}  // namespace urThread
