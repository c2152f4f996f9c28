// Reads JSON: a fast reader for plain valid texts, and yajl, which decides about all others.
#pragma once

#include <cstddef>
#include <string_view>

#include "plst/impl/json/JsonTreeSink.h"

namespace nxPLST::impl {

enum class JsonReading {
    refused,       ///< nothing was read
    whole,         ///< the tree has everything in the text
    perhapsLossy,  ///< the tree may lack some values
};

/// Stores the tree of `text` in `out`, unless the text is refused.
JsonReading readJson(ur::Reference<Item>& out, std::string_view text);

/// Builds the tree of a text in one pass, or gives up: then yajl decides.
class FastJsonReader {
public:
    explicit FastJsonReader(std::string_view text) : text_(text) {}

    /// The tree, or null after giving up. Call it once.
    ur::Reference<Item> read();
    /// As `JsonTreeSink::lostNothing`.
    [[nodiscard]] bool lostNothing() const noexcept { return sink_.lostNothing(); }

private:
    std::string_view text_;
    JsonTreeSink sink_;
};

/// Reads the text with yajl, comments allowed. False when yajl refuses it; `out` then keeps its value.
bool readWithYajl(ur::Reference<Item>& out, char const* text, std::size_t length);

}  // namespace nxPLST::impl
