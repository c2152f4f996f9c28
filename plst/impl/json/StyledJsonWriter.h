// Writes JSON for programs.
#pragma once

#include <string_view>

#include "plst/impl/ChildWalk.h"
#include "plst/impl/ExpansionGuard.h"
#include "plst/impl/json/TextSink.h"
#include "plst/json.h"

namespace nxPLST::impl {

/// Writes one tree of any depth in a given style. The reader here accepts all its output.
class StyledJsonWriter {
public:
    StyledJsonWriter(urString::CString& text, JsonStyle const& style);

    /// False when the tree contains a number without a JSON form or a null that is refused, or shares too many items:
    /// the text then ends there. Call it once.
    [[nodiscard]] bool write(Item const* root);

private:
    [[nodiscard]] std::size_t written() const noexcept { return sink_.size() - before_; }
    void chargeFor(std::size_t capacity);
    bool writeNext();
    bool writeItem(Item const* item);
    bool writeNumber(double value);
    void writeText(urString::CString const& text);
    void writeValid(std::string_view text);
    void writeCharacters(std::string_view text);
    void writeAscii(char character);
    void writeUnits(char32_t character);
    template <class Container>
    bool open(Container const& container, char opening);
    void startLine();

    TextSink sink_;
    std::size_t const before_;  // bytes of the text
    std::size_t const indent_;
    std::size_t indented_ = 0;  // bytes of indentation so far
    bool const asciiOnly_;
    bool const refuseNulls_;
    ur::Charge* const charge_;
    std::size_t charged_ = 0;
    ExpansionGuard guard_;
    ur::vector<ChildWalk> open_;
    bool isFirst_ = true;  // whether the next child is the innermost container's first
};

}  // namespace nxPLST::impl
