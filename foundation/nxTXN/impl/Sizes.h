// Size limits of a history.
#pragma once

#include <cstddef>
#include <cstdint>

namespace nxTXN::impl {

/// Tests make them small, so that a few steps reach limits that otherwise take thousands.
struct Sizes {
    std::size_t smallestBlock = 1024;  ///< bytes of records; the next block has twice as many, up to the largest
    std::size_t largestBlock = std::size_t(64) * 1024;
    unsigned stepBlockBits = 7;                                ///< the steps in a block are two to the power of this
    std::uint32_t mostPins = (1U << 25) - 1;                   ///< an object that this many records need stays for good
    std::size_t mostRecordBytes = (std::size_t(1) << 31) - 8;  ///< of the fields of one object; recording more throws
};

}  // namespace nxTXN::impl
