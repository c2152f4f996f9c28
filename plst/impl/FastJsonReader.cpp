// Reading plain JSON.
#include "plst/impl/FastJsonReader.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "plst/Bool.h"
#include "plst/Double.h"
#include "plst/String.h"
#include "plst/impl/JsonNumberReader.h"
#include "plst/impl/JsonText.h"
#include "plst/impl/textScan.h"

namespace nxPLST::impl {
namespace {

/// All whole numbers up to here are doubles.
constexpr double exactWholes = 0x1p53;

bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

char const* skipSpace(char const* at) {
    if (static_cast<unsigned char>(*at) > ' ') [[likely]]
        return at;
    while (isSpace(*at)) ++at;
    return at;
}

/// Stable, and fast for the few members that most dictionaries have.
template <class Member>
void sortByKey(std::span<Member> members) {
    constexpr std::size_t fewMembers = 24;
    auto const before = [](Member const& a, Member const& b) { return a.key < b.key; };
    if (members.size() > fewMembers) {
        if (!std::is_sorted(members.begin(), members.end(), before)) {
            std::stable_sort(members.begin(), members.end(), before);
        }
        return;
    }
    for (std::size_t i = 1; i < members.size(); ++i) {
        if (!before(members[i], members[i - 1])) continue;
        Member moving = std::move(members[i]);
        std::size_t hole = i;
        do {
            members[hole] = std::move(members[hole - 1]);
        } while (--hole > 0 && before(moving, members[hole - 1]));
        members[hole] = std::move(moving);
    }
}

}  // namespace

FastJsonReader::FastJsonReader(std::string_view text) : text_(text.data()), end_(text_ + text.size()) {
    while (end_ != text_ && isSpace(end_[-1])) --end_;
    while (text_ != end_ && isSpace(*text_)) ++text_;
}

ur::Reference<Item> FastJsonReader::read() {
    if (end_ - text_ < 2 || (end_[-1] != ']' && end_[-1] != '}') || (*text_ != '[' && *text_ != '{')) return nullptr;
    char const* at = open(text_);
    while (at && !frames_.empty()) at = frames_.top().isDictionary ? readMembers(at) : readElements(at);
    return at == end_ ? std::move(root_) : nullptr;
}

/// Reads elements until their array ends or another container begins.
char const* FastJsonReader::readElements(char const* at) {
    for (;;) {
        if (*at == '[' || *at == '{') return open(at);
        at = readScalar(at, [this](ur::Reference<Item> item) { elements_.push(std::move(item)); });
        if (!at) return nullptr;
        at = skipSpace(at);
        if (*at != ',') return close(at);
        at = skipSpace(at + 1);
    }
}

/// Reads members until their object ends or the value of one is a container, which begins. The key of the first one
/// has been read.
char const* FastJsonReader::readMembers(char const* at) {
    for (;;) {
        if (*at == '[' || *at == '{') return open(at);
        at = readScalar(at, [this](ur::Reference<Item> item) { members_.top().value = std::move(item); });
        if (!at) return nullptr;
        if (!members_.top().value) members_.pop();
        at = skipSpace(at);
        if (*at != ',') return close(at);
        at = readKey(skipSpace(at + 1));
        if (!at) return nullptr;
    }
}

/// Reads a value that is no container. Nothing is added for a null.
template <class Add>
char const* FastJsonReader::readScalar(char const* at, Add add) {
    switch (*at) {
        case '"': {
            std::string_view text;
            at = readText(at + 1, text);
            if (at) add(ur::make<String>(urString::CString(text)));
            return at;
        }
        case 't': add(ur::make<Bool>(true)); return readLiteral(at, "true");
        case 'f': add(ur::make<Bool>(false)); return readLiteral(at, "false");
        case 'n': lostNothing_ = false; return readLiteral(at, "null");
        default: break;
    }
    double value = 0;
    if (*at != '-' && !isDigit(*at)) return nullptr;
    at = readNumber(at, end_, value);
    if (!at) return nullptr;
    if (std::fabs(value) >= exactWholes) [[unlikely]]
        lostNothing_ = false;
    add(ur::make<Double>(value));
    return at;
}

char const* FastJsonReader::readLiteral(char const* at, std::string_view word) const {
    bool const isThere = std::string_view(at, static_cast<std::size_t>(end_ - at)).starts_with(word);
    return isThere ? at + word.size() : nullptr;
}

/// Reads a key and its colon, and adds a member whose value is still missing.
char const* FastJsonReader::readKey(char const* at) {
    if (*at != '"') return nullptr;
    std::string_view key;
    at = readText(at + 1, key);
    if (!at) return nullptr;
    members_.push(urString::CString(key), nullptr);
    at = skipSpace(at);
    return *at == ':' ? skipSpace(at + 1) : nullptr;
}

/// From behind the opening quote to behind the closing one, which is before the last bracket. The text lives until
/// the next one is read.
char const* FastJsonReader::readText(char const* at, std::string_view& text) {
    char const* const stop = runEnd<Stop::atEscapesAndUtf8>(at, end_);
    if (stop == end_ || *stop != '"') [[unlikely]]
        return readUnusualText(at, stop, text);
    text = {at, static_cast<std::size_t>(stop - at)};
    return stop + 1 < end_ ? stop + 1 : nullptr;
}

/// A text that has escapes or more than ASCII, which is plain up to `stop`.
char const* FastJsonReader::readUnusualText(char const* at, char const* stop, std::string_view& text) {
    unescaped_.clear();
    for (; stop != end_ && *stop != '"'; stop = runEnd<Stop::atEscapesAndUtf8>(stop, end_)) {
        if (*stop == '\\') {
            unescaped_.append(at, stop);
            at = stop = readEscape(stop, end_, unescaped_);
            if (!at) return nullptr;
        } else {
            int const length = utf8Length(stop, end_);
            if (length < 2) return nullptr;
            stop += length;
        }
    }
    if (end_ - stop < 2) return nullptr;
    unescaped_.append(at, stop);
    text = unescaped_;
    return stop + 1;
}

/// From the bracket to the first child's value, or past the whole when there is none.
char const* FastJsonReader::open(char const* at) {
    bool const isDictionary = *at == '{';
    frames_.push(isDictionary ? members_.size() : elements_.size(), isDictionary);
    at = skipSpace(at + 1);
    if (*at == ']' || *at == '}') return close(at);
    return isDictionary ? readKey(at) : at;
}

/// Closes what ends at `at` and goes on to the next value, or past the last bracket.
char const* FastJsonReader::close(char const* at) {
    while (*at == ']' || *at == '}') {
        Frame const frame = frames_.top();
        if (frame.isDictionary != (*at == '}')) return nullptr;
        frames_.pop();
        ur::Reference<Item> item = frame.isDictionary ? takeDictionary(frame.first) : takeArray(frame.first);
        ++at;
        if (frames_.empty()) {
            root_ = std::move(item);
            return at;
        }
        if (at == end_) return nullptr;
        if (frames_.top().isDictionary) {
            members_.top().value = std::move(item);
        } else {
            elements_.push(std::move(item));
        }
        at = skipSpace(at);
    }
    if (*at != ',') return nullptr;
    at = skipSpace(at + 1);
    return frames_.top().isDictionary ? readKey(at) : at;
}

ur::Reference<Item> FastJsonReader::takeArray(std::size_t first) {
    auto array = ur::make<Array>();
    auto const elements = elements_.above(first);
    array->array().assign(std::move_iterator(elements.begin()), std::move_iterator(elements.end()));
    elements_.cut(first);
    return array;
}

ur::Reference<Item> FastJsonReader::takeDictionary(std::size_t first) {
    auto dictionary = ur::make<Dictionary>();
    auto const members = members_.above(first);
    sortByKey(members);
    auto& map = dictionary->dictionary();
    for (std::size_t i = 0; i < members.size(); ++i) {
        Member member = std::move(members[i]);
        bool const again = i + 1 < members.size() && members[i + 1].key == member.key;  // the last one stays
        lostNothing_ &= !again;
        if (!again) map.emplace_hint(map.end(), std::move(member.key), std::move(member.value));
    }
    members_.cut(first);
    return dictionary;
}

}  // namespace nxPLST::impl
