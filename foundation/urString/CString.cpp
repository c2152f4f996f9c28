// Changes and formats texts, independently of the locale.
#include "foundation/urString/CString.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <ostream>
#include <stdexcept>

#include "foundation/urString/impl/PlainLocale.h"

namespace urString {

using impl::TextRep;

namespace {

/// A capacity of at least `needed` bytes, large enough that repeated growth stays linear.
std::size_t grownCapacity(TextRep const& rep, std::size_t needed) {
    return std::max(needed, std::min(rep.capacity() + rep.capacity() / 2, TextRep::maxSize));
}

bool liesWithin(std::string_view part, TextRep const& whole) {
    std::less_equal<char const*> const before;
    return before(whole.data(), part.data()) && before(part.data(), whole.data() + whole.size());
}

std::size_t sum(std::size_t a, std::size_t b) {
    if (b > TextRep::maxSize - a) throw std::length_error("text too long");
    return a + b;
}

char* put(char* to, std::string_view text) {
    if (text.empty()) return to;
    std::memcpy(to, text.data(), text.size());
    return to + text.size();
}

}  // namespace

CString::CString(std::size_t count, char character) { append(count, character); }

CString& CString::assign(std::string_view text) {
    if (text.size() <= capacity()) {
        if (!text.empty()) std::memmove(rep_.data(), text.data(), text.size());
        rep_.setSize(text.size());
    } else {
        rep_ = TextRep(text.data(), text.size());
    }
    return *this;
}

CString& CString::appendGrowing(std::string_view text) {
    bool const inside = liesWithin(text, rep_);
    std::size_t const offset = inside ? static_cast<std::size_t>(text.data() - rep_.data()) : 0;
    rep_.enlarge(grownCapacity(rep_, sum(rep_.size(), text.size())));
    char* const end = rep_.extend(text.size());
    put(end, inside ? std::string_view(rep_.data() + offset, text.size()) : text);
    return *this;
}

CString& CString::append(std::size_t count, char character) {
    resize(sum(size(), count), character);
    return *this;
}

CString& CString::replace(std::size_t position, std::size_t count, std::string_view text) {
    std::size_t const start = std::min(position, size());
    std::size_t const removed = std::min(count, size() - start);
    std::size_t const newSize = sum(size() - removed, text.size());
    std::string_view const head = view().substr(0, start);
    std::string_view const tail = view().substr(start + removed);
    if (newSize <= capacity() && !liesWithin(text, rep_)) {
        std::memmove(rep_.data() + start + text.size(), tail.data(), tail.size());
        put(rep_.data() + start, text);
        rep_.setSize(newSize);
    } else {
        TextRep changed = TextRep::ofSize(newSize, newSize <= capacity() ? newSize : grownCapacity(rep_, newSize));
        put(put(put(changed.data(), head), text), tail);
        rep_ = std::move(changed);
    }
    return *this;
}

std::size_t CString::replace(std::string_view from, std::string_view to) {
    if (from.empty()) return 0;
    CString result;
    std::size_t replaced = 0;
    std::size_t done = 0;
    for (std::size_t at; (at = find(from, done)) != npos; done = at + from.size()) {
        result.append(view().substr(done, at - done)).append(to);
        ++replaced;
    }
    if (replaced > 0) *this = std::move(result.append(view().substr(done)));
    return replaced;
}

void CString::reserve(std::size_t capacity) {
    if (capacity > rep_.capacity()) rep_.enlarge(capacity);
}

void CString::resize(std::size_t size, char fill) {
    std::size_t const former = this->size();
    if (size > capacity()) reserve(grownCapacity(rep_, size));
    if (size > former) std::memset(rep_.data() + former, fill, size - former);
    rep_.setSize(size);
}

CString& CString::toUpperCase() noexcept {
    for (char& c : *this) c = 'a' <= c && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    return *this;
}

CString& CString::toLowerCase() noexcept {
    for (char& c : *this) c = 'A' <= c && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return *this;
}

CString CString::substr(std::size_t position, std::size_t count) const {
    return CString(view().substr(std::min(position, size()), count));
}

std::ostream& operator<<(std::ostream& out, CString const& text) { return out << text.view(); }

CString CString::vformat(char const* format, va_list arguments) {
    impl::PlainLocale const plain;
    char brief[256];
    va_list again;
    va_copy(again, arguments);
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): the caller called va_start
    int const length = std::vsnprintf(brief, sizeof brief, format, arguments);
    CString result;
    if (length > 0 && std::size_t(length) < sizeof brief) {
        result.assign(brief, std::size_t(length));
    } else if (length > 0) {
        result.resize(std::size_t(length));
        std::vsnprintf(result.data(), result.size() + 1, format, again);
    }
    va_end(again);
    return result;
}

CString CString::format(char const* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    CString result = vformat(format, arguments);
    va_end(arguments);
    return result;
}

}  // namespace urString
