// A registry that collects its types when a file first needs them.
#include "foundation/io/ioSimplePacketRegistry.h"

#include <utility>

ioSimplePacketRegistry::~ioSimplePacketRegistry() = default;

void ioSimplePacketRegistry::supportedType(std::unique_ptr<ioPacketType> type) {
    std::string name = type->name();
    if (!forReading_) type.reset();
    types_.try_emplace(std::move(name), std::move(type));
}

void ioSimplePacketRegistry::add(std::string_view name) { types_.try_emplace(std::string(name)); }

void ioSimplePacketRegistry::registerTypes() {
    if (!std::exchange(registered_, true)) registration_.emit(*this);
}

bool ioSimplePacketRegistry::supports(std::string_view name) const { return types_.contains(name); }

ioPacketType* ioSimplePacketRegistry::reader(std::string_view name) const {
    auto const found = types_.find(name);
    return found == types_.end() ? nullptr : found->second.get();
}
