// The side of a packet format that writes.
#pragma once

#include "foundation/ur/Export.h"

class ioWriteContext;

/// Base of classes that write the packets of one format through a context, which outlives them.
class NX_API ioClientWriteContext {
public:
    explicit ioClientWriteContext(ioWriteContext& context) noexcept : context_(&context) {}

    [[nodiscard]] ioWriteContext& context() const noexcept { return *context_; }

private:
    ioWriteContext* context_;
};
