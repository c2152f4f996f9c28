// Generates, formats and parses identifiers.
#include "foundation/urOS/Uuid.h"

#define XXH_INLINE_ALL  // nothing of it is exported or linked
#include <xxhash.h>

#include <charconv>

#include "foundation/urOS/impl/drawRandom.h"

namespace urOS {
namespace {

constexpr std::string_view shape = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";

}  // namespace

void Uuid::generate() {
    impl::drawRandom(words_);
    // RFC 4122, 4.4: the version in the upper four bits of the seventh byte, the variant in the ninth.
    words_[1] = (words_[1] & 0xFFFF0FFFU) | 0x00004000U;
    words_[2] = (words_[2] & 0x3FFFFFFFU) | 0x80000000U;
}

bool Uuid::parse(std::string_view text) noexcept {
    if (text.size() != shape.size()) return false;
    std::array<std::uint32_t, 4> words{};
    unsigned digits = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (shape[i] == '-') {
            if (text[i] != '-') return false;
            continue;
        }
        unsigned digit = 0;
        if (std::from_chars(&text[i], &text[i] + 1, digit, 16).ptr == &text[i]) return false;
        std::uint32_t& word = words[digits++ / 8];
        word = word << 4 | digit;
    }
    words_ = words;
    return true;
}

urString::CString Uuid::asString() const {
    std::array<char, shape.size()> text;
    unsigned digits = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (shape[i] == '-') {
            text[i] = '-';
            continue;
        }
        unsigned const shift = 28 - 4 * (digits % 8);
        text[i] = "0123456789abcdef"[words_[digits++ / 8] >> shift & 0xF];
    }
    return {text.data(), text.size()};
}

int Uuid::compare(Uuid const& other) const noexcept {
    auto const order = *this <=> other;
    return std::is_gt(order) - std::is_lt(order);
}

UuidHash::UuidHash() {
    std::array<std::uint32_t, 2> words{};
    impl::drawRandom(words);
    secret_ = std::uint64_t(words[0]) << 32 | words[1];
}

std::size_t UuidHash::operator()(Uuid const& id) const noexcept {
    return static_cast<std::size_t>(XXH3_64bits_withSeed(id.words().data(), sizeof(Uuid), secret_));
}

}  // namespace urOS
