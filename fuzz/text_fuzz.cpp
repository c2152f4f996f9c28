// Reads any bytes as text. Both encodings must agree on whether it is well-formed, names must keep their bytes, and the
// wide text must survive each form of writing.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "foundation/urString/IString.h"
#include "fuzz/require.h"

namespace {

using urString::Encoding;
using urString::IString;

bool isScalar(char32_t character) { return character < 0xD800 || (character > 0xDFFF && character <= 0x10FFFF); }
bool isStandIn(char32_t character) { return character >= 0xDC80 && character <= 0xDCFF; }

void checkBytes(std::string_view bytes) {
    bool nameInError = false;
    bool textInError = false;
    IString const name(bytes, Encoding::multibyte, &nameInError);
    IString const text(bytes, Encoding::utf8, &textInError);
    require(nameInError == textInError, "both encodings read the same bytes as well-formed");
    require(name.asMultibyte() == bytes, "every name comes back");
    require(textInError || text.asUTF8() == bytes, "well-formed text comes back");
    require(textInError || name == text, "well-formed bytes mean the same in both");
    require(!textInError || text.find(U'\uFFFD') != IString::npos, "what was ill-formed can be seen");
    for (char32_t const character : text.view()) require(isScalar(character), "text holds characters");
    for (char32_t const character : name.view()) {
        require(isScalar(character) || isStandIn(character), "names hold characters and stand-ins");
    }
}

/// Takes the bytes as character numbers of four bytes each; most of them are not characters.
void checkCharacters(std::string_view bytes) {
    std::u32string numbers(bytes.size() / sizeof(char32_t), U'\0');
    std::memcpy(numbers.data(), bytes.data(), numbers.size() * sizeof(char32_t));
    for (char32_t& number : numbers) number &= 0x1FFFFF;
    IString const text{std::u32string_view(numbers)};
    require(text.size() == numbers.size(), "a number is a character, whatever it is");
    require(IString(std::wstring_view(text.asWide())) == text, "wide text comes back");

    urString::CString const utf8 = text.asUTF8();
    require(utf8.size() + 1 == text.asUTF8StoreSize(), "the size is known beforehand");
    bool inError = true;
    IString const again(utf8.view(), Encoding::utf8, &inError);
    require(!inError && again.size() == text.size(), "what is written is well-formed");
    for (std::size_t i = 0; i < text.size(); ++i) {
        require(again[i] == (isScalar(text[i]) ? text[i] : U'\uFFFD'), "characters come back");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    std::string_view const text(reinterpret_cast<char const*>(bytes), size);
    checkBytes(text);
    checkCharacters(text);
    return 0;
}
