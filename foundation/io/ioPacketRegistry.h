// The packet types that a context supports.
#pragma once

#include <memory>
#include <string_view>

#include "foundation/io/ioPacketType.h"
#include "foundation/ur/Export.h"

/// The packet types that may be written to a file or read from one.
class NX_API ioPacketRegistry {
public:
    virtual ~ioPacketRegistry() = default;

    /// Adds a type. If the name exists already, the first type stays.
    virtual void supportedType(std::unique_ptr<ioPacketType> type) = 0;
    /// Contexts call this when a file starts, before they look up types.
    virtual void registerTypes() = 0;
    [[nodiscard]] virtual bool supports(std::string_view name) const = 0;
    /// The type that reads packets of that name. Null when such packets are skipped.
    [[nodiscard]] virtual ioPacketType* reader(std::string_view name) const = 0;
};
