// The reader for plain valid JSON.
#pragma once

#include <string_view>

#include "plst/impl/JsonTreeSink.h"

namespace nxPLST::impl {

/// Builds the tree of a text in one pass, or gives up: then yajl decides.
class FastJsonReader {
public:
    explicit FastJsonReader(std::string_view text) : text_(text) {}

    /// The tree, or null after giving up. Call it once.
    ur::Reference<Item> read();
    /// As of JsonTreeSink.
    [[nodiscard]] bool lostNothing() const noexcept { return sink_.lostNothing(); }

private:
    std::string_view text_;
    JsonTreeSink sink_;
};

}  // namespace nxPLST::impl
