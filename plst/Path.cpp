// Reading, following and spelling paths.
#include "plst/Path.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

#include "plst/casts.h"

namespace nxPLST {
namespace {

using ItemIn = ur::Reference<Item const>;

bool isBare(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-' ||
           static_cast<unsigned char>(c) >= 0x80;
}

/// Reads one path from front to back.
class PathReader {
public:
    PathReader(std::string_view text, std::string& error) : text_(text), error_(error) {}

    std::optional<Path> read() {
        if (text_ == ".") return Path();
        while (at_ < text_.size()) {
            bool const ok = text_[at_] == '.' ? readKey() : text_[at_] == '[' ? readIndex() : fail("'.' or '['");
            if (!ok) return std::nullopt;
        }
        return std::move(path_);
    }

private:
    bool fail(char const* expected) {
        error_ =
            "bad path " + std::string(text_) + ": expected " + expected + " at character " + std::to_string(at_ + 1);
        return false;
    }

    bool readKey() {
        ++at_;
        if (at_ < text_.size() && text_[at_] == '"') return readQuoted();
        auto const* const end = std::find_if_not(text_.begin() + at_, text_.end(), isBare);
        std::string key(text_.begin() + at_, end);
        if (key.empty()) return fail("a key");
        at_ += key.size();
        path_.emplace_back(std::move(key));
        return true;
    }

    bool readQuoted() {
        std::string key;
        for (++at_; at_ < text_.size() && text_[at_] != '"'; ++at_) key += readCharacter();
        if (at_ == text_.size()) return fail("'\"'");
        ++at_;
        path_.emplace_back(std::move(key));
        return true;
    }

    /// The character here, or the one that an escape sequence here means; stands on its last byte afterwards.
    char readCharacter() {
        if (text_[at_] != '\\' || at_ + 1 == text_.size()) return text_[at_];
        unsigned code = 0;
        std::string_view const digits = text_.substr(at_).substr(0, 6);
        if (digits.size() == 6 && digits[1] == 'u' &&
            std::from_chars(digits.data() + 2, digits.data() + 6, code, 16).ptr == digits.data() + 6 && code < 0x80) {
            at_ += 5;
            return static_cast<char>(code);
        }
        return text_[++at_];
    }

    bool readIndex() {
        ++at_;
        long index = 0;
        auto const [end, problem] = std::from_chars(text_.data() + at_, text_.data() + text_.size(), index);
        if (problem != std::errc()) return fail("an index");
        at_ = static_cast<std::size_t>(end - text_.data());
        if (at_ == text_.size() || text_[at_] != ']') return fail("']'");
        ++at_;
        path_.emplace_back(index);
        return true;
    }

    std::string_view text_;
    std::string& error_;
    std::size_t at_ = 0;
    Path path_;
};

ItemIn child(ItemIn const& item, Path::value_type const& step) {
    if (auto const* key = std::get_if<std::string>(&step)) {
        auto const dictionary = asDictionary(item);
        return dictionary ? dictionary->get(*key) : nullptr;
    }
    auto const array = asArray(item);
    if (!array) return nullptr;
    long index = std::get<long>(step);
    if (index < 0) index += array->size();
    return index >= 0 && index < array->size() ? array->objectAt(static_cast<int>(index)) : nullptr;
}

}  // namespace

std::optional<Path> parsePath(std::string_view text, std::string& error) { return PathReader(text, error).read(); }

ItemIn follow(ItemIn root, Path const& path, std::string& error) {
    if (!root) error = "nothing at .";
    std::string reached;
    for (auto const& step : path) {
        ItemIn next = child(root, step);
        if (!next) {
            error = "nothing at " + reached + stepText(step);
            return nullptr;
        }
        reached += stepText(step);
        root = std::move(next);
    }
    return root;
}

ur::Reference<Item> at(ur::Reference<Item> const& root, std::string_view path) {
    ItemIn const found = at(ItemIn(root), path);
    return ur::Reference<Item>(const_cast<Item*>(found.get()));  // of a tree that the caller may change
}

ItemIn at(ItemIn const& root, std::string_view path) {
    std::string error;
    auto const steps = parsePath(path, error);
    return steps ? follow(root, *steps, error) : nullptr;
}

std::string stepText(Path::value_type const& step) {
    if (auto const* key = std::get_if<std::string>(&step)) return keyText(*key);
    return indexText(std::get<long>(step));
}

std::string keyText(std::string_view key) {
    if (!key.empty() && std::all_of(key.begin(), key.end(), isBare)) return "." + std::string(key);
    std::string text = ".\"";
    for (char const c : key) {
        char escape[8];
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) {
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
            text += escape;
            continue;
        }
        if (c == '"' || c == '\\') text += '\\';
        text += c;
    }
    return text + '"';
}

std::string indexText(long index) { return "[" + std::to_string(index) + "]"; }

}  // namespace nxPLST
