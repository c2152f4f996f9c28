// Counts and sizes of a tree.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "plst/Item.h"

namespace nxplist {

/// The counts of a tree's parts. A shared item counts once, in the first container that holds it.
struct Statistics {
    struct Subtree {
        std::string path;
        std::uint64_t items;
        std::uint64_t bytes;
    };

    std::array<std::uint64_t, 5> countByType{};  ///< indexed by `nxPLST::Type`
    std::uint64_t keys = 0;
    std::uint64_t depth = 0;       ///< levels of containers
    std::uint64_t bytes = 0;       ///< in memory
    std::vector<Subtree> largest;  ///< containers below the root, largest first
};

/// `subtrees`: the number of largest subtrees to return.
Statistics statisticsOf(nxPLST::Item const& root, std::size_t subtrees);

}  // namespace nxplist
