// The writer of strict JSON.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "plst/impl/ChildWalk.h"
#include "plst/impl/TextSink.h"

namespace nxPLST::impl {

/// Writes one tree, byte for byte and refusal for refusal as yajl's generator does with its beautify option set
/// and numbers formatted with "%.20g".
class StrictJsonWriter {
public:
    explicit StrictJsonWriter(urString::CString& text) : sink_(text) {}

    /// Whether nothing in the tree was refused. What came before a refusal is written. Call it once.
    bool write(Item const* root);

private:
    /// An open container and its children that are not written yet.
    struct Frame {
        ChildWalk children;
        bool isEmpty;  // nothing is written in it so far
    };

    static constexpr int depthLimit = 128;  // the generator's: this level is refused
    static constexpr std::size_t indentStep = 4;

    // These are false, or give null, when something is refused.
    bool writeElements();
    bool writeMembers();
    char* putMisplaced(char* to, MemberWalk const& member, bool& valueDue);
    bool open(char* to, Item const& container);

    void close(char* to);
    char* startLine(char* to, bool isFirst);
    char* putScalar(char* to, Item const* item, int kind);
    char* putText(char* to, urString::CString const& text);
    char* putAnyText(char* to, std::string_view text);
    bool refuse(char* to);

    TextSink sink_;
    int depth_ = 0;
    std::array<Frame, depthLimit> frames_;
};

}  // namespace nxPLST::impl
