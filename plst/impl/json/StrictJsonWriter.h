// Writes strict JSON.
#pragma once

#include <cstddef>
#include <string_view>

#include "plst/Array.h"
#include "plst/Dictionary.h"
#include "plst/String.h"
#include "plst/impl/ExpansionGuard.h"
#include "plst/impl/json/TextSink.h"
#include "plst/json.h"

namespace nxPLST::impl {

/// Writes one tree with the same bytes and refusals as yajl's generator with its beautify option and numbers formatted
/// with "%.20g".
///
/// Each child is written with its comma and line feed; the closing bracket removes the last comma. The recursion is no
/// deeper than the generator's limit.
class StrictJsonWriter {
public:
    StrictJsonWriter(urString::CString& text, std::uint64_t mostExpandedBytes)
        : sink_(text), guard_(mostExpandedBytes) {}

    /// Whether nothing in the tree was refused. The part before a refusal is written. Call it once.
    bool write(Item const* root);

private:
    struct Brackets {
        char opening;
        char closing;
    };

    static constexpr std::size_t indentStep = 4;
    static constexpr std::size_t deepestIndent = 127 * indentStep;  // the generator refuses containers here

    // These write to `to`, where there is room for an item, and return the position after it. Null after a refusal; a
    // refused number leaves the text unchanged, any other refusal has set the sink's end.
    char* putValue(char* to, Item const* item, int kind, std::size_t indent);
    template <class Container>
    char* putContainer(char* to, Brackets brackets, Container const& container, std::size_t indent);
    char* putChildren(char* to, Array const& array, std::size_t indent);
    char* putChildren(char* to, Dictionary const& dictionary, std::size_t indent);
    char* putMisplaced(char* to, Dictionary::Map::value_type const& member, std::size_t indent, bool& valueDue);

    char* startLine(char* to, std::size_t indent);
    char* putString(char* to, String const& string);
    char* putText(char* to, urString::CString const& text);
    char* putAnyText(char* to, std::string_view text);
    char* refuse(char* to);

    TextSink sink_;
    ExpansionGuard guard_;
};

}  // namespace nxPLST::impl
