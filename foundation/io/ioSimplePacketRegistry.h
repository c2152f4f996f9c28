// A registry that collects its types when a file first needs them.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "foundation/io/ioPacketRegistry.h"
#include "foundation/ur/Export.h"
#include "foundation/urRTB/Signal.h"

/// Emits its registration signal once, when the first file starts. Modules connect to it and add their packet types.
///
/// A registry for writing keeps only the names and drops the types. The creator of the context owns the registry, which
/// outlives the context. One thread at a time.
class NX_API ioSimplePacketRegistry final : public ioPacketRegistry {
public:
    explicit ioSimplePacketRegistry(bool forReading) noexcept : forReading_(forReading) {}
    ~ioSimplePacketRegistry() override;

    [[nodiscard]] urRTB::Signal<ioSimplePacketRegistry&>& registrationSignal() noexcept { return registration_; }

    void supportedType(std::unique_ptr<ioPacketType> type) override;
    /// Adds a type that is only written; a reader skips its packets.
    void add(std::string_view name);

    void registerTypes() override;
    [[nodiscard]] bool supports(std::string_view name) const override;
    [[nodiscard]] ioPacketType* reader(std::string_view name) const override;

private:
    std::map<std::string, std::unique_ptr<ioPacketType>, std::less<>> types_;
    bool forReading_;
    bool registered_ = false;
    urRTB::Signal<ioSimplePacketRegistry&> registration_;
};
