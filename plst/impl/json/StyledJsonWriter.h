// Writes JSON for programs.
#pragma once

#include <string>
#include <string_view>

#include "plst/impl/ChildWalk.h"
#include "plst/impl/ExpansionGuard.h"
#include "plst/json.h"

namespace nxPLST::impl {

/// Writes one tree of any depth in a given style. The reader here accepts all its output.
class StyledJsonWriter {
public:
    explicit StyledJsonWriter(JsonStyle const& style);

    /// False when the tree contains a number without a JSON form, or shares too many items. Call it once.
    [[nodiscard]] bool write(Item const* root);
    [[nodiscard]] std::string const& text() const noexcept { return text_; }

private:
    void chargeFor(std::size_t capacity);
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
    std::size_t indented_ = 0;  // bytes of indentation so far
    bool const asciiOnly_;
    ur::Charge* const charge_;
    std::size_t charged_ = 0;
    ExpansionGuard guard_;
    ur::vector<ChildWalk> open_;
    bool isFirst_ = true;  // whether the next child is the innermost container's first
};

}  // namespace nxPLST::impl
