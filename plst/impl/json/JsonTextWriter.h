// Writes the readable dump.
#pragma once

#include <cstddef>
#include <string_view>

#include "foundation/urOS/OStream.h"
#include "plst/impl/ChildWalk.h"
#include "plst/impl/ExpansionGuard.h"

namespace nxPLST::impl {

/// Writes one tree for people to read: members indented on separate lines, texts without escapes.
///
/// Indentation may grow with the square of the depth, so it stops where it would exceed both a fixed size and a
/// multiple of the rest.
class JsonTextWriter {
public:
    static constexpr std::size_t usualFreeIndentation = std::size_t(64) << 20;

    explicit JsonTextWriter(urOS::IOStream& stream, std::uint64_t mostExpandedBytes = mostExpandedText,
                            std::size_t freeIndentation = usualFreeIndentation)
        : out_(stream), freeIndentation_(freeIndentation), guard_(mostExpandedBytes) {}

    /// Writes the tree, nothing if it is null, and a line feed. False when the stream failed, or when the tree shares
    /// so many items that only its beginning was written. Call it once.
    [[nodiscard]] bool write(Item const* root);

private:
    enum class JsonToken { none, openObject, closeObject, openArray, closeArray, comma, colon };

    static constexpr std::size_t indentStep = 4;
    static constexpr std::size_t indentationPerByte = 16;

    void writeNext(ChildWalk& children);
    void writeItem(Item const* item);
    void endValue();
    void writeText(urString::CString const& text);
    void put(JsonToken token);
    void put(std::string_view text);
    void startLine();

    urOS::OStream out_;
    JsonToken last_ = JsonToken::none;
    std::size_t indentWidth_ = 0;
    std::size_t indented_ = 0;  // bytes of indentation so far
    std::size_t written_ = 0;   // all other bytes
    ur::vector<ChildWalk> stack_;
    std::size_t const freeIndentation_;
    ExpansionGuard guard_;
    bool stopped_ = false;
};

}  // namespace nxPLST::impl
