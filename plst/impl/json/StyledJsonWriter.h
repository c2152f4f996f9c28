// The writer of JSON for programs.
#pragma once

#include <string>
#include <string_view>

#include "plst/impl/ChildWalk.h"
#include "plst/impl/ExpansionGuard.h"
#include "plst/json.h"

namespace nxPLST::impl {

/// Writes one tree of any depth in a style of one's choice. All that it writes is JSON that is read here.
class StyledJsonWriter {
public:
    explicit StyledJsonWriter(JsonStyle const& style);

    /// False when the tree holds a number that JSON has no form for, or shares too much. Call it once.
    [[nodiscard]] bool write(Item const* root);
    [[nodiscard]] std::string const& text() const noexcept { return text_; }

private:
    bool writeNext();
    bool writeItem(Item const* item);
    bool writeNumber(double value);
    void writeText(urString::CString const& text);
    void writeUnicode(std::string_view rest);
    void writeAscii(char character);
    void writeUnits(char32_t character);
    template <class Container>
    bool open(Container const& container, char opening);
    void startLine();

    std::string text_;
    std::size_t const indent_;
    bool const asciiOnly_;
    ExpansionGuard guard_;
    ur::vector<ChildWalk> open_;
    bool isFirst_ = true;  // of the innermost container's children
};

}  // namespace nxPLST::impl
