// Follows yajl through a text, and explains where it stops.
#include "plst/impl/json/JsonInspector.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <utility>

#include "plst/impl/json/YajlScan.h"

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
        if (frame.inside == Inside::array) {
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
    static_cast<void>(YajlScan<JsonInspector>(*this).run(text_));
    report.reason = passToFault() ? "not the JSON that is read here" : scanner_.reason;
    report.location = locate(text_, offset(scanner_.at));
    if (endedEarly_ && !frames_.empty()) {
        JsonLocation const start = locate(text_, offset(frames_.back().start));
        report.reason = urString::CString::format("the text ends inside the %s that begins at line %zu, column %zu",
                                                  frames_.back().inside == Inside::array ? "array" : "object",
                                                  start.line, start.column);
    }
}

void JsonInspector::reportLosses(JsonReport& report) {
    seeksLosses_ = true;
    static_cast<void>(YajlScan<JsonInspector>(*this).run(text_));
    std::sort(losses_.begin(), losses_.end(), before);
    JsonLocation location;
    for (JsonLoss& loss : losses_) {
        advance(location, text_, loss.location.offset);
        loss.location = location;
    }
    report.losses = std::move(losses_);
    report.lossCount = lossCount_;
}

// ---- What yajl reads

void JsonInspector::key(ScannedText name) {
    char const* start = tokenEnd_ - 1;  // the closing quote
    auto const isEscaped = [&] {
        char const* before = start;
        while (before[-1] == '\\') --before;
        return (start - before) % 2 != 0;
    };
    do --start;
    while (*start != '"' || isEscaped());
    frames_.back().key = {start + 1, tokenEnd_ - 1};
    if (seeksLosses_) key_ = name.copy();
    last_ = Last::key;
    lastEnd_ = tokenEnd_;
}

void JsonInspector::open(Inside inside) {
    addMember();
    if (charge_ && frames_.size() == frames_.capacity())
        charge_->add(std::max<std::size_t>(frames_.size(), 1) * sizeof(Frame));
    frames_.push_back({tokenEnd_ - 1, inside, members_.size()});
    last_ = Last::opening;
    lastEnd_ = tokenEnd_;
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
    endValue();
}

void JsonInspector::addScalar() {
    addMember();
    endValue();
}

void JsonInspector::addNumber() {
    char const* start = tokenEnd_;
    while (start != text_.data() && std::string_view("0123456789.eE+-").find(start[-1]) != std::string_view::npos)
        --start;
    std::string_view const digits(start, tokenEnd_);
    bool const isInteger = digits.find_first_of(".eE") == std::string_view::npos;
    if (isInteger && isRounded(digits)) addLoss(JsonLoss::Kind::roundedInteger, start);
    addScalar();
}

void JsonInspector::addMember() {
    if (!seeksLosses_ || frames_.empty() || frames_.back().inside == Inside::array) return;
    members_.push_back({std::move(key_), frames_.back().key});
}

void JsonInspector::endValue() noexcept {
    if (!frames_.empty()) ++frames_.back().index;
    last_ = Last::value;
    lastEnd_ = tokenEnd_;
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

// ---- The step to the fault

bool JsonInspector::passToFault() {
    if (text_.starts_with("\xEF\xBB\xBF")) return scanner_.fail("byte-order mark before the text");
    scanner_.at = lastEnd_;
    bool const isZero = last_ == Last::value && lastEnd_[-1] == '0';  // yajl ends a number there
    if (isZero && isDigit(scanner_.next())) return scanner_.fail("a number must not begin with 0");
    if (!scanner_.passSpace()) return false;
    if (last_ == Last::value && frames_.empty())
        return scanner_.atEnd() || scanner_.fail("expected the end of the text");
    if (last_ == Last::key) {
        if (scanner_.next() != ':') return fail("expected ':'");
        ++scanner_.at;
    } else if (last_ != Last::nothing && !passToChild()) {
        return false;
    }
    return scanner_.passSpace() && passScalar();
}

/// Skips what is between the last value, or the beginning of a container, and the next value.
bool JsonInspector::passToChild() {
    bool const isArray = frames_.back().inside == Inside::array;
    if (last_ == Last::opening) return isArray || passKey("expected a key in quotes or '}'");
    if (scanner_.next() != ',') return fail(isArray ? "expected ',' or ']'" : "expected ',' or '}'");
    ++scanner_.at;
    return scanner_.passSpace() && (isArray || passKey("expected a key in quotes"));
}

/// Yajl has not accepted the key.
bool JsonInspector::passKey(char const* expected) {
    if (scanner_.next() != '"') return fail(expected);
    return scanner_.passText();
}

/// Yajl has not accepted the value.
bool JsonInspector::passScalar() {
    switch (char const first = scanner_.next(); first) {
        case 'n': return scanner_.passWord("null");
        case 't': return scanner_.passWord("true");
        case 'f': return scanner_.passWord("false");
        case '"': return scanner_.passText();
        default: return first == '-' || isDigit(first) ? scanner_.passNumber() : fail("expected a value");
    }
}

/// Reports a fault between tokens.
bool JsonInspector::fail(char const* expected) {
    endedEarly_ = scanner_.atEnd();
    return scanner_.fail(endedEarly_ ? "there is no value in the text" : expected);
}

}  // namespace nxPLST::impl
