// Base class of packet writers.
#pragma once

#include "foundation/ur/Export.h"

class ioWriteContext;

/// Base of classes that write the packets of one format through a context. The context outlives them.
class NX_API ioClientWriteContext {
public:
    explicit ioClientWriteContext(ioWriteContext& context) noexcept : context_(&context) {}

    [[nodiscard]] ioWriteContext& context() const noexcept { return *context_; }

private:
    ioWriteContext* context_;
};
