// The default callbacks of packet readers.
#include "foundation/io/ioClientReadContext.h"

ioClientReadContext::~ioClientReadContext() = default;
void ioClientReadContext::prePacketRead(ioPacketType const& /*type*/) {}
void ioClientReadContext::postPacketRead(ioPacketType const& /*type*/) {}
