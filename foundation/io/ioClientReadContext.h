// Base class of packet readers.
#pragma once

#include "foundation/ur/Export.h"

class ioPacketType;
class ioReadContext;

/// Base of classes that read the packets of one format through a context. The context outlives them.
class NX_API ioClientReadContext {
public:
    explicit ioClientReadContext(ioReadContext& context) noexcept : context_(&context) {}
    virtual ~ioClientReadContext();

    /// Called before each top-level packet, not before nested ones. Does nothing by default.
    virtual void prePacketRead(ioPacketType const& type);
    /// Called after each top-level packet that was read without a fault.
    virtual void postPacketRead(ioPacketType const& type);

    [[nodiscard]] ioReadContext& context() const noexcept { return *context_; }

protected:
    ioClientReadContext(ioClientReadContext const&) noexcept = default;
    ioClientReadContext& operator=(ioClientReadContext const&) noexcept = default;

private:
    ioReadContext* context_;
};
