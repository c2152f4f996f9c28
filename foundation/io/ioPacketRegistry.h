// Which packet types a context may meet.
#pragma once

#include <memory>
#include <string_view>

#include "foundation/io/ioPacketType.h"
#include "foundation/ur/Export.h"

/// The packet types that a file may be written with, or that are understood when it is read.
class NX_API ioPacketRegistry {
public:
    virtual ~ioPacketRegistry() = default;

    /// Adds a type. The first one of a name stays.
    virtual void supportedType(std::unique_ptr<ioPacketType> type) = 0;
    /// Contexts call it when a file starts, before they ask for any type.
    virtual void registerTypes() = 0;
    [[nodiscard]] virtual bool supports(std::string_view name) const = 0;
    /// The type that reads packets of that name; null when they are to be passed over.
    [[nodiscard]] virtual ioPacketType* reader(std::string_view name) const = 0;
};
