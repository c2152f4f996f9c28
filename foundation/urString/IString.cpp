// Converts wide text from and to bytes and wide characters, and edits it.
#include "foundation/urString/IString.h"

#include <algorithm>
#include <ostream>
#include <utility>

#include "foundation/urString/impl/encoding.h"

namespace urString {

namespace {

constexpr bool wideIsUtf16 = sizeof(wchar_t) == 2;

std::string_view orEmpty(char const* text) { return text ? std::string_view(text) : std::string_view(); }

bool isLead(char32_t unit) { return 0xd800 <= unit && unit <= 0xdbff; }
bool isTrail(char32_t unit) { return 0xdc00 <= unit && unit <= 0xdfff; }

/// The unit as a number, whatever the sign of `wchar_t` is.
char32_t unitOf(wchar_t unit) { return char32_t(unit) & (wideIsUtf16 ? 0xffff : 0xffffffff); }

}  // namespace

IString::IString(char const* text, Encoding encoding, bool* error) { assign(text, encoding, error); }
IString::IString(std::string_view text, Encoding encoding, bool* error) { assign(text, encoding, error); }
IString::IString(wchar_t const* text) { assign(text ? std::wstring_view(text) : std::wstring_view()); }
IString::IString(std::wstring_view text) { assign(text); }
IString::IString(std::u32string_view text) : text_(text) {
    std::transform(text_.begin(), text_.end(), text_.begin(), impl::held);
}

IString IString::format(char const* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    IString result = vformat(format, arguments);
    va_end(arguments);
    return result;
}

IString IString::vformat(char const* format, va_list arguments) {
    return IString(CString::vformat(format, arguments), Encoding::multibyte);
}

IString& IString::assign(std::string_view text, Encoding encoding, bool* error) {
    text_.clear();
    bool const wellFormed = impl::decode(text, encoding, text_);
    if (error) *error = !wellFormed;
    return *this;
}

IString& IString::assign(char const* text, std::size_t size, Encoding encoding, bool* error) {
    return assign(std::string_view(text, size), encoding, error);
}

IString& IString::assign(char const* text, Encoding encoding, bool* error) {
    return assign(orEmpty(text), encoding, error);
}

IString& IString::assign(std::wstring_view text) {
    text_.clear();
    text_.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t unit = unitOf(text[i]);
        if (wideIsUtf16 && isLead(unit) && i + 1 < text.size() && isTrail(unitOf(text[i + 1]))) {
            unit = 0x10000 + ((unit - 0xd800) << 10) + (unitOf(text[++i]) - 0xdc00);
        }
        append(unit);
    }
    return *this;
}

CString IString::asUTF8() const { return impl::encode(text_, Encoding::utf8); }
std::size_t IString::asUTF8StoreSize() const noexcept { return impl::encodedSize(text_, Encoding::utf8) + 1; }
CString IString::asMultibyte() const { return impl::encode(text_, Encoding::multibyte); }

std::wstring IString::asWide() const {
    std::wstring result;
    result.reserve(text_.size());
    for (char32_t const character : text_) {
        if (wideIsUtf16 && character > 0xffff) {
            result.push_back(wchar_t(0xd800 + ((character - 0x10000) >> 10)));
            result.push_back(wchar_t(0xdc00 + (character & 0x3ff)));
        } else {
            result.push_back(wchar_t(character));
        }
    }
    return result;
}

IString& IString::append(IString const& text) {
    text_.append(text.text_);
    return *this;
}

IString& IString::append(char32_t character) {
    text_.push_back(impl::held(character));
    return *this;
}

IString& IString::erase(std::size_t position, std::size_t count) {
    text_.erase(std::min(position, text_.size()), count);
    return *this;
}

IString& IString::replace(std::size_t position, std::size_t count, IString const& text) {
    text_.replace(std::min(position, text_.size()), count, text.text_);
    return *this;
}

std::size_t IString::replace(IString const& from, IString const& to) {
    if (from.empty()) return 0;
    std::u32string result;
    std::size_t replaced = 0;
    std::size_t done = 0;
    for (std::size_t at; (at = find(from, done)) != npos; done = at + from.length()) {
        result.append(text_, done, at - done).append(to.text_);
        ++replaced;
    }
    if (replaced > 0) text_ = std::move(result.append(text_, done));
    return replaced;
}

IString IString::substr(std::size_t position, std::size_t count) const {
    IString result;
    result.text_ = text_.substr(std::min(position, text_.size()), count);
    return result;
}

std::ostream& operator<<(std::ostream& out, IString const& text) { return out << text.asUTF8(); }

}  // namespace urString
