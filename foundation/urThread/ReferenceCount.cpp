// Deletes objects that threads share.
#include "foundation/urThread/ReferenceCount.h"

namespace urThread {

// Not inline: static analysis would see the deletion but not the count, and report every second use as use after free.
void ReferenceCount::unref() const noexcept {
    if (count_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

ReferenceCount::~ReferenceCount() = default;

}  // namespace urThread
