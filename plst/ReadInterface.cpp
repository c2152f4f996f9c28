// Reads items from packets.
#include "plst/ReadInterface.h"

#include <memory>
#include <utility>

#include "foundation/io/ioPacketRegistry.h"
#include "plst/casts.h"
#include "plst/impl/ItemPacketWalk.h"

namespace nxPLST {

ReadInterface::ReadInterface(ioReadContext& context) : ioClientReadContext(context) {}
ReadInterface::ReadInterface(ReadInterface const& other) = default;
ReadInterface::~ReadInterface() = default;

void ReadInterface::registerTypes(ioPacketRegistry& registry, ReadInterface* reader) {
    auto const add = [&](Type kind, PListPacket::Operation operation) {
        registry.supportedType(std::make_unique<PListPacket>(kind, reader, operation));
    };
    add(BoolType, &ReadInterface::readBoolPacket);
    add(DoubleType, &ReadInterface::readDoublePacket);
    add(StringType, &ReadInterface::readStringPacket);
    add(ArrayType, &ReadInterface::readArrayPacket);
    add(DictionaryType, &ReadInterface::readDictionaryPacket);
}

ur::Reference<Item> ReadInterface::readItem() { return PacketWalk(*this).item(); }
ur::Reference<Array> ReadInterface::readArray() { return asArray(readItem()); }
ur::Reference<Bool> ReadInterface::readBool() { return asBool(readItem()); }
ur::Reference<Dictionary> ReadInterface::readDictionary() { return asDictionary(readItem()); }
ur::Reference<Double> ReadInterface::readDouble() { return asDouble(readItem()); }
ur::Reference<String> ReadInterface::readString() { return asString(readItem()); }

void ReadInterface::readBoolPacket() { complete(impl::readScalar(context(), BoolType)); }
void ReadInterface::readDoublePacket() { complete(impl::readScalar(context(), DoubleType)); }
void ReadInterface::readStringPacket() { complete(impl::readScalar(context(), StringType)); }
void ReadInterface::readArrayPacket() { PacketWalk(*this).fill(ur::make<Array>()); }
void ReadInterface::readDictionaryPacket() { PacketWalk(*this).fill(ur::make<Dictionary>()); }

void ReadInterface::complete(ur::Reference<Item> item) {
    context().definePacketObject(item.get());
    items_.push_back(std::move(item));
}

}  // namespace nxPLST
