// The side of a packet format that reads.
#pragma once

#include "foundation/ur/Export.h"

class ioPacketType;
class ioReadContext;

/// Base of classes that read the packets of one format through a context, which outlives them.
class NX_API ioClientReadContext {
public:
    explicit ioClientReadContext(ioReadContext& context) noexcept : context_(&context) {}
    virtual ~ioClientReadContext();

    /// Called before each packet of the file, not before the packets inside it. Does nothing unless overridden.
    virtual void prePacketRead(ioPacketType const& type);
    /// Called after each packet of the file that was read without a fault.
    virtual void postPacketRead(ioPacketType const& type);

    [[nodiscard]] ioReadContext& context() const noexcept { return *context_; }

protected:
    ioClientReadContext(ioClientReadContext const&) noexcept = default;
    ioClientReadContext& operator=(ioClientReadContext const&) noexcept = default;

private:
    ioReadContext* context_;
};
