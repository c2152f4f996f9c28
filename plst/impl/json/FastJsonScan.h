// Scans plain valid JSON, which is nearly all JSON.
#pragma once

#include <string>
#include <string_view>

#include "foundation/urString/CString.h"
#include "plst/impl/json/JsonNumberReader.h"
#include "plst/impl/json/JsonText.h"

namespace nxPLST::impl {

/// A scanned text, and how many bytes can be read from its start: perhaps more than it has.
struct ScannedText {
    std::string_view view;
    std::size_t readable;

    [[nodiscard]] urString::CString copy() const { return urString::CString::ofReadable(view, readable); }
};

/// The kind of the enclosing container.
enum class Inside { array, dictionary };

/// Passes the values of a text to a sink in one pass, or gives up.
///
/// It accepts no text that yajl refuses, and reports the same values for those it accepts. At anything unusual (a
/// comment, a single number, half of a surrogate pair, a number out of range) it gives up, and yajl decides. The text
/// must be an object or an array: its last bracket stops all scanning, so that only texts must check for the end.
///
/// `Sink` has `null<inside>()`, `boolean<inside>(bool)`, `number<inside>(double)`, `text<inside>(ScannedText)`,
/// `key(ScannedText)` before the value, `open(inside)` and `close()` for containers. `isOpen()` returns whether it is
/// in a container, `current()` in which kind. Arguments are valid until the next call.
template <class Sink>
class FastJsonScan {
public:
    FastJsonScan(std::string_view text, Sink& sink) : sink_(sink), text_(text.data()), end_(text_ + text.size()) {
        while (end_ != text_ && isSpace(end_[-1])) --end_;
        while (text_ != end_ && isSpace(*text_)) ++text_;
    }

    /// False after giving up. Call it once.
    bool run() {
        if (end_ - text_ < 2 || (end_[-1] != ']' && end_[-1] != '}') || (*text_ != '[' && *text_ != '{')) return false;
        char const* at = open(text_);
        while (at && sink_.isOpen()) {
            bool const isDictionary = sink_.current() == Inside::dictionary;
            at = isDictionary ? readValues<Inside::dictionary>(at) : readValues<Inside::array>(at);
        }
        return at == end_;
    }

private:
    // These read from a position and return the position after it, or null when they give up.

    char const* skipSpace(char const* at) const {
        if (static_cast<unsigned char>(*at) > ' ') [[likely]]
            return at;
        if (!isSpace(*at) || static_cast<unsigned char>(*++at) > ' ') return at;
        return spaceEnd(at, end_);
    }

    /// Reads values until their container ends or the next value is a container, which begins. In an object, the first
    /// key was already read.
    template <Inside inside>
    char const* readValues(char const* at) {
        for (;;) {
            if (*at == '[' || *at == '{') return open(at);
            at = readScalar<inside>(at);
            if (!at) return nullptr;
            at = skipSpace(at);
            if (*at != ',') return close(at);
            at = skipSpace(at + 1);
            if constexpr (inside == Inside::dictionary) {
                at = readKey(at);
                if (!at) return nullptr;
            }
        }
    }

    template <Inside inside>
    char const* readScalar(char const* at) {
        switch (*at) {
            case '"': {
                ScannedText text;
                at = readText(at + 1, text);
                if (at) sink_.template text<inside>(text);
                return at;
            }
            case 't': sink_.template boolean<inside>(true); return readLiteral(at, "true");
            case 'f': sink_.template boolean<inside>(false); return readLiteral(at, "false");
            case 'n': sink_.template null<inside>(); return readLiteral(at, "null");
            default: break;
        }
        double value = 0;
        if (*at != '-' && !isDigit(*at)) return nullptr;
        at = readNumber(at, end_, value);
        if (at) sink_.template number<inside>(value);
        return at;
    }

    char const* readLiteral(char const* at, std::string_view word) const {
        bool const isThere = std::string_view(at, static_cast<std::size_t>(end_ - at)).starts_with(word);
        return isThere ? at + word.size() : nullptr;
    }

    /// Reads a key and its colon.
    char const* readKey(char const* at) {
        if (*at != '"') return nullptr;
        ScannedText key;
        at = readText(at + 1, key);
        if (!at) return nullptr;
        sink_.key(key);
        at = skipSpace(at);
        return *at == ':' ? skipSpace(at + 1) : nullptr;
    }

    /// Reads from after the opening quote to after the closing one, which is before the last bracket. The text is valid
    /// until the next one is read.
    char const* readText(char const* at, ScannedText& text) {
        char const* const stop = runEnd<Stop::atEscapesAndUtf8>(at, end_);
        if (stop == end_ || *stop != '"') [[unlikely]]
            return readUnusualText(at, stop, text);
        text = {{at, static_cast<std::size_t>(stop - at)}, static_cast<std::size_t>(end_ - at)};
        return stop + 1 < end_ ? stop + 1 : nullptr;
    }

    /// A text with escapes or non-ASCII characters; it is plain up to `stop`.
    char const* readUnusualText(char const* at, char const* stop, ScannedText& text) {
        unescaped_.clear();
        for (; stop != end_ && *stop != '"'; stop = runEnd<Stop::atEscapesAndUtf8>(stop, end_)) {
            if (*stop == '\\') {
                unescaped_.append(at, stop);
                at = stop = readEscape(stop, end_, unescaped_);
            } else {
                stop = utf8RunEnd(stop, end_);
            }
            if (!stop) return nullptr;
        }
        if (end_ - stop < 2) return nullptr;
        if (unescaped_.empty()) {  // it had no escapes
            text = {{at, static_cast<std::size_t>(stop - at)}, static_cast<std::size_t>(end_ - at)};
        } else {
            unescaped_.append(at, stop);
            text = {unescaped_, unescaped_.size()};
        }
        return stop + 1;
    }

    /// From the bracket to the first child's value, or past the whole container when it is empty.
    char const* open(char const* at) {
        bool const isDictionary = *at == '{';
        sink_.open(isDictionary ? Inside::dictionary : Inside::array);
        at = skipSpace(at + 1);
        if (*at == ']' || *at == '}') return close(at);
        return isDictionary ? readKey(at) : at;
    }

    /// Closes the container that ends at `at` and continues to the next value, or past the last bracket.
    char const* close(char const* at) {
        while (*at == ']' || *at == '}') {
            if ((sink_.current() == Inside::dictionary) != (*at == '}')) return nullptr;
            sink_.close();
            ++at;
            if (!sink_.isOpen()) return at;
            if (at == end_) return nullptr;
            at = skipSpace(at);
        }
        if (*at != ',') return nullptr;
        at = skipSpace(at + 1);
        return sink_.current() == Inside::dictionary ? readKey(at) : at;
    }

    Sink& sink_;
    char const* text_;
    char const* end_;
    std::string unescaped_;
};

}  // namespace nxPLST::impl
