// Checks the grammar of JSON, with comments, for reports.
#include "plst/impl/json/JsonInspector.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <utility>

#include "plst/impl/json/JsonText.h"

namespace nxPLST::impl {
namespace {

bool before(JsonLoss const& a, JsonLoss const& b) { return a.location.offset < b.location.offset; }

/// Moves `location` on to `offset`, which is not before it.
void advance(JsonLocation& location, std::string_view text, std::size_t offset) {
    for (; location.offset < offset; ++location.offset) {
        char const c = text[location.offset];
        if (c == '\n') {
            ++location.line;
            location.column = 1;
        } else if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) {
            ++location.column;
        }
    }
}

JsonLocation locate(std::string_view text, std::size_t offset) {
    JsonLocation location;
    advance(location, text, offset);
    return location;
}

/// The unescaped text of a key. Halves of surrogate pairs stay as they are spelled.
urString::CString unescaped(std::string_view spelling) {
    if (spelling.find('\\') == std::string_view::npos) return urString::CString(spelling);
    std::string text;
    char const* const end = spelling.data() + spelling.size();
    for (char const* at = spelling.data(); at != end;) {
        char const* const behind = *at == '\\' ? readEscape(at, end, text) : nullptr;
        if (!behind) text += *at;
        at = behind ? behind : at + 1;
    }
    return urString::CString(text);
}

bool isBare(std::string_view key) {
    return !key.empty() && std::all_of(key.begin(), key.end(), [](char c) {
        auto const byte = static_cast<unsigned char>(c);
        return (byte >= '0' && byte <= '9') || ((byte | 0x20) >= 'a' && (byte | 0x20) <= 'z') || byte == '_' ||
               byte == '-' || byte >= 0x80;
    });
}

void cut(std::string& path) {
    std::size_t size = JsonLoss::longestPath - 3;
    while ((static_cast<unsigned char>(path[size]) & 0xC0) == 0x80) --size;
    path.resize(size);
    path += "...";
}

template <class Frames>
urString::CString pathTo(Frames const& frames) {
    std::string path;
    for (auto const& frame : frames) {
        if (frame.isArray) {
            path += '[' + std::to_string(frame.index) + ']';
        } else {
            path += isBare(frame.key) ? "." : ".\"";
            path += frame.key;
            if (!isBare(frame.key)) path += '"';
        }
        if (path.size() > JsonLoss::longestPath) {
            cut(path);
            break;
        }
    }
    return path.empty() ? "." : urString::CString(path);
}

bool isRounded(std::string_view integer) {
    std::int64_t whole = 0;
    std::from_chars(integer.data(), integer.data() + integer.size(), whole);
    auto const nearest = static_cast<double>(whole);
    return nearest >= 0x1p63 || static_cast<std::int64_t>(nearest) != whole;
}

}  // namespace

void JsonInspector::reportFault(JsonReport& report) {
    report.reason = inspect() ? "not the JSON that is read here" : scanner_.reason;
    report.location = locate(text_, offset(scanner_.at));
    if (endedEarly_ && !frames_.empty()) {
        JsonLocation const start = locate(text_, offset(frames_.back().start));
        report.reason =
            urString::CString::format("the text ends inside the %s that begins at line %zu, column %zu",
                                      frames_.back().isArray ? "array" : "object", start.line, start.column);
    }
}

void JsonInspector::reportLosses(JsonReport& report) {
    seeksLosses_ = true;
    static_cast<void>(inspect());
    std::sort(losses_.begin(), losses_.end(), before);
    JsonLocation location;
    for (JsonLoss& loss : losses_) {
        advance(location, text_, loss.location.offset);
        loss.location = location;
    }
    report.losses = std::move(losses_);
    report.lossCount = lossCount_;
}

bool JsonInspector::inspect() {
    if (text_.starts_with("\xEF\xBB\xBF")) return scanner_.fail("byte-order mark before the text");
    bool valueComes = true;
    do {
        if (!scanner_.passSpace()) return false;
        if (valueComes ? !passValue(valueComes) : !passBehindValue(valueComes)) return false;
    } while (valueComes || !frames_.empty());
    return scanner_.passSpace() && (scanner_.atEnd() || scanner_.fail("expected the end of the text"));
}

/// Skips a scalar, or everything before the first value in a container.
bool JsonInspector::passValue(bool& valueComes) {
    char const first = scanner_.next();
    if (first != '[' && first != '{') {
        valueComes = false;
        return passScalar();
    }
    addMember();
    open(first == '[');
    if (!scanner_.passSpace()) return false;
    valueComes = scanner_.next() != (first == '[' ? ']' : '}');
    return first == '[' || !valueComes || passKey("expected a key in quotes or '}'");
}

/// Skips the end of the innermost container, or everything before the next value in it.
bool JsonInspector::passBehindValue(bool& valueComes) {
    Frame& frame = frames_.back();
    char const next = scanner_.next();
    if (next == (frame.isArray ? ']' : '}')) {
        close();
        return true;
    }
    if (next != ',') return fail(frame.isArray ? "expected ',' or ']'" : "expected ',' or '}'");
    ++scanner_.at;
    ++frame.index;
    valueComes = true;
    return scanner_.passSpace() && (frame.isArray || passKey("expected a key in quotes"));
}

bool JsonInspector::passKey(char const* expected) {
    if (scanner_.next() != '"') return fail(expected);
    if (!scanner_.passText(frames_.back().key) || !scanner_.passSpace()) return false;
    if (scanner_.next() != ':') return fail("expected ':'");
    ++scanner_.at;
    return true;
}

bool JsonInspector::passScalar() {
    char const* const start = scanner_.at;
    char const first = scanner_.next();
    if (first == 'n') {
        if (!scanner_.passWord("null")) return false;
        addLoss(JsonLoss::Kind::nullValue, start);
        return true;
    }
    addMember();
    if (first == 't') return scanner_.passWord("true");
    if (first == 'f') return scanner_.passWord("false");
    if (first == '"') {
        std::string_view text;
        return scanner_.passText(text);
    }
    if (first != '-' && (first < '0' || first > '9')) return fail("expected a value");
    bool isInteger = false;
    if (!scanner_.passNumber(isInteger)) return false;
    std::string_view const digits(start, static_cast<std::size_t>(scanner_.at - start));
    if (isInteger && isRounded(digits)) addLoss(JsonLoss::Kind::roundedInteger, start);
    return true;
}

/// Reports a fault between tokens.
bool JsonInspector::fail(char const* expected) {
    endedEarly_ = scanner_.atEnd();
    return scanner_.fail(endedEarly_ ? "there is no value in the text" : expected);
}

void JsonInspector::open(bool isArray) {
    if (charge_ && frames_.size() == frames_.capacity())
        charge_->add(std::max<std::size_t>(frames_.size(), 1) * sizeof(Frame));
    frames_.push_back({scanner_.at, isArray, members_.size()});
    ++scanner_.at;
}

/// All but the last of the members with equal keys are lost.
void JsonInspector::close() {
    auto const first = members_.begin() + static_cast<std::ptrdiff_t>(frames_.back().firstMember);
    std::stable_sort(first, members_.end(), [](Member const& a, Member const& b) { return a.key < b.key; });
    for (auto member = first; member != members_.end(); ++member) {
        if (member + 1 == members_.end() || member->key != member[1].key) continue;
        frames_.back().key = member->spelling;
        addLoss(JsonLoss::Kind::repeatedKey, member->spelling.data() - 1);
    }
    members_.erase(first, members_.end());
    frames_.pop_back();
    ++scanner_.at;
}

void JsonInspector::addMember() {
    if (!seeksLosses_ || frames_.empty() || frames_.back().isArray) return;
    members_.push_back({unescaped(frames_.back().key), frames_.back().key});
}

void JsonInspector::addLoss(JsonLoss::Kind kind, char const* start) {
    if (!seeksLosses_) return;
    ++lossCount_;
    bool const isFull = losses_.size() == JsonReport::mostLosses;
    if (isFull && losses_.front().location.offset < offset(start)) return;
    losses_.push_back({kind, {offset(start)}, pathTo(frames_)});
    std::push_heap(losses_.begin(), losses_.end(), before);
    if (!isFull) return;
    std::pop_heap(losses_.begin(), losses_.end(), before);
    losses_.pop_back();
}

}  // namespace nxPLST::impl
