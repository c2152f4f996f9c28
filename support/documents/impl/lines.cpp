// Follows a path through a tape.
#include "support/documents/impl/lines.h"

#include <algorithm>

#include "plst/JsonTape.h"

namespace nxSupport::impl {
namespace {

using nxPLST::JsonTape;

/// Stands on an entry of a tape.
class Place {
public:
    explicit Place(JsonTape const& tape) noexcept : tape_(tape) {}

    /// Goes on to the member or element. False when there is none; then the place is where the container ends.
    bool enter(nxPLST::Path::value_type const& step) {
        JsonTape::Entry const container = entry();
        bool const isKey = std::holds_alternative<std::string>(step);
        if (container.kind != (isKey ? JsonTape::Kind::dictionary : JsonTape::Kind::array)) return false;
        ++index_;
        long left = isKey ? 0 : std::get<long>(step);
        for (std::uint32_t i = 0; i < container.size; ++i) {
            if (isKey) {
                JsonTape::Entry const& key = entry();
                ++index_;
                if (tape_.textOf(key) == std::get<std::string>(step)) {
                    if (!key.isUnescaped) offset_ = key.place;
                    return true;
                }
            } else if (entry().kind != JsonTape::Kind::null && left-- == 0) {
                return true;  // nulls are no elements of the tree
            }
            skip();
        }
        return false;
    }
    /// In the text: of the last key that was found.
    [[nodiscard]] std::size_t offset() const noexcept { return offset_; }

private:
    [[nodiscard]] JsonTape::Entry const& entry() const { return tape_.entries()[index_]; }
    void skip() {
        for (std::size_t values = 1; values > 0; --values) {
            JsonTape::Entry const& skipped = tape_.entries()[index_++];
            if (skipped.kind == JsonTape::Kind::array) values += skipped.size;
            if (skipped.kind == JsonTape::Kind::dictionary) values += 2 * std::size_t(skipped.size);
        }
    }

    JsonTape const& tape_;
    std::size_t index_ = 0;
    std::size_t offset_ = 0;
};

}  // namespace

std::size_t lineOf(std::string_view text, nxPLST::Path const& path) {
    JsonTape tape;
    if (!tape.read(text)) return 1;
    Place place(tape);
    for (auto const& step : path) {
        if (!place.enter(step)) break;
    }
    return 1 + static_cast<std::size_t>(std::ranges::count(text.substr(0, place.offset()), '\n'));
}

}  // namespace nxSupport::impl
