// The defaults of packet types.
#include "foundation/io/ioPacketType.h"

#include <utility>

ioPacketType::~ioPacketType() = default;
bool ioPacketType::memoryNotReferenced() const { return false; }
bool ioPacketType::hasUnresolvedPointer() const { return false; }

ioReadCallback::~ioReadCallback() = default;

ioSimplePacketType::ioSimplePacketType(std::string_view name, std::unique_ptr<ioReadCallback> callback)
    : ioPacketType(name), callback_(std::move(callback)) {}
ioSimplePacketType::~ioSimplePacketType() = default;
void ioSimplePacketType::read(ioClientReadContext& client) { callback_->read(client); }
