// The packet type names of items.
#pragma once

#include <array>

#include "plst/Item.h"

namespace nxPLST::impl {

/// By `Type`.
inline constexpr std::array packetNames{
    "vexo.nx.plst.Bool", "vexo.nx.plst.Double", "vexo.nx.plst.String", "vexo.nx.plst.Array", "vexo.nx.plst.Dictionary",
};
inline constexpr char const* rootPacketName = "vexo.nx.plst.SimpleItem";

}  // namespace nxPLST::impl
