// Parses, follows and formats paths.
#include "plst/Path.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <utility>

#include "plst/casts.h"
#include "plst/json.h"

namespace nxPLST {
namespace {

using ItemIn = ur::Reference<Item const>;

bool isBare(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-' ||
           static_cast<unsigned char>(c) >= 0x80;
}

/// Parses one path.
class PathReader {
public:
    /// `takesAny`: whether `[*]` is allowed.
    PathReader(std::string_view text, std::string& error, bool takesAny)
        : text_(text), error_(error), takesAny_(takesAny) {}

    std::optional<Pattern> read() {
        if (text_ == ".") return std::move(pattern_);
        while (at_ < text_.size()) {
            bool const ok = text_[at_] == '.' ? readKey() : text_[at_] == '[' ? readBracket() : fail("'.' or '['");
            if (!ok) return std::nullopt;
        }
        return std::move(pattern_);
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
        pattern_.back().emplace_back(std::move(key));
        return true;
    }

    bool readQuoted() {
        std::string key;
        for (++at_; at_ < text_.size() && text_[at_] != '"';) {
            if (text_[at_] == '\\') {
                if (!readEscapes(key)) return false;
            } else {
                key += text_[at_++];
            }
        }
        if (at_ == text_.size()) return fail("'\"'");
        ++at_;
        pattern_.back().emplace_back(std::move(key));
        return true;
    }

    /// The escape sequences from here on, read as JSON text.
    bool readEscapes(std::string& key) {
        std::size_t end = at_;
        while (end < text_.size() && text_[end] == '\\') end += text_.substr(end + 1).starts_with('u') ? 6 : 2;
        end = std::min(end, text_.size());
        ur::Reference<Item> read;
        std::string const json = '"' + std::string(text_.substr(at_, end - at_)) + '"';
        if (!convertFromJSON(read, json) || !asString(read)) return fail("an escape sequence");
        key += asString(read)->value().view();
        at_ = end;
        return true;
    }

    bool readBracket() {
        ++at_;
        if (at_ < text_.size() && text_[at_] == '"') return readQuoted() && readClosing();
        if (at_ < text_.size() && text_[at_] == '*' && takesAny_) {
            ++at_;
            pattern_.emplace_back();
            return readClosing();
        }
        long index = 0;
        auto const [end, problem] = std::from_chars(text_.data() + at_, text_.data() + text_.size(), index);
        if (problem != std::errc()) return fail("an index");
        at_ = static_cast<std::size_t>(end - text_.data());
        pattern_.back().emplace_back(index);
        return readClosing();
    }

    bool readClosing() {
        if (at_ == text_.size() || text_[at_] != ']') return fail("']'");
        ++at_;
        return true;
    }

    std::string_view text_;
    std::string& error_;
    bool takesAny_;
    std::size_t at_ = 0;
    Pattern pattern_{1};
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

template <class Visit>
void forEachChild(ItemIn const& item, Visit visit) {
    if (auto const array = asArray(item)) {
        for (auto const& element : array->array()) visit(element);
    }
    if (auto const dictionary = asDictionary(item)) {
        for (auto const& [key, value] : dictionary->dictionary()) visit(value);
    }
}

void addFollowed(std::vector<ItemIn>& found, ItemIn const& item, Path const& path) {
    std::string unused;
    if (auto value = follow(item, path, unused)) found.push_back(std::move(value));
}

}  // namespace

std::optional<Path> parsePath(std::string_view text, std::string& error) {
    auto pattern = PathReader(text, error, false).read();
    if (!pattern) return std::nullopt;
    return std::move(pattern->front());
}

std::optional<Pattern> parsePattern(std::string_view text, std::string& error) {
    return PathReader(text, error, true).read();
}

std::vector<ItemIn> followAll(ItemIn const& root, Pattern const& pattern) {
    std::vector<ItemIn> found{root};
    for (auto path = pattern.begin(); path != pattern.end(); ++path) {
        std::vector<ItemIn> const from = std::exchange(found, {});
        for (ItemIn const& item : from) {
            if (path == pattern.begin()) {
                addFollowed(found, item, *path);
            } else {
                forEachChild(item, [&](ItemIn const& any) { addFollowed(found, any, *path); });
            }
        }
    }
    return found;
}

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
    return ur::Reference<Item>(const_cast<Item*>(found.get()));  // the caller may change this tree
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
