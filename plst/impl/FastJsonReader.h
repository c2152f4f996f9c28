// The reader for plain valid JSON, which is nearly all JSON there is.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "plst/Array.h"
#include "plst/Dictionary.h"
#include "plst/impl/ScratchStack.h"

namespace nxPLST::impl {

/// Builds the tree of a text in one pass, or gives up.
///
/// It takes no text that yajl refuses, and makes the same tree of those it takes. Whatever is unusual (a comment, a
/// single number, half of a surrogate pair, a number out of range) makes it give up, and yajl decides. The text must
/// be an object or an array: its last bracket stops all scanning, so that only texts have to look for the end.
class FastJsonReader {
public:
    explicit FastJsonReader(std::string_view text);

    /// The tree, or null after giving up. Call it once.
    ur::Reference<Item> read();
    /// Whether the tree has everything: no null and no repeated key was dropped, and no number was rounded that may
    /// have been whole.
    [[nodiscard]] bool lostNothing() const noexcept { return lostNothing_; }

private:
    struct Member {
        urString::CString key;
        ur::Reference<Item> value;
    };

    /// An open container: the first of its children in `elements_` or `members_`.
    struct Frame {
        std::size_t first;
        bool isDictionary;
    };

    // These read what is at a place and give the place behind it, or null when they give up.
    char const* readElements(char const* at);
    char const* readMembers(char const* at);
    template <class Add>
    char const* readScalar(char const* at, Add add);
    template <class Add>
    char const* readNumberItem(char const* at, Add add);
    char const* readKey(char const* at);
    char const* readText(char const* at, std::string_view& text);
    char const* readUnusualText(char const* at, char const* stop, std::string_view& text);
    char const* readLiteral(char const* at, std::string_view word) const;
    char const* open(char const* at);
    char const* close(char const* at);

    ur::Reference<Item> takeArray(std::size_t first);
    ur::Reference<Item> takeDictionary(std::size_t first);

    char const* text_;
    char const* end_;
    ScratchStack<Frame> frames_;
    ScratchStack<ur::Reference<Item>> elements_;
    ScratchStack<Member> members_;
    std::string unescaped_;
    bool lostNothing_ = true;
    ur::Reference<Item> root_;
};

}  // namespace nxPLST::impl
