// Finds and reports losses.
#include "tools/nxplist/Losses.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <unordered_set>
#include <vector>

#include "foundation/urString/utf8.h"
#include "plst/String.h"
#include "tools/nxplist/Walk.h"

namespace nxplist {
namespace {

using nxPLST::Item;

/// Visits every text and key of a tree; a shared item once.
class TextWalk {
public:
    /// Called with the text and a function that returns its path, until it returns false.
    using Take = std::function<bool(std::string_view text, std::function<std::string()> const& path)>;

    explicit TextWalk(Take take) : take_(std::move(take)) {}

    void run(Item const* root) {
        bool goOn = visit(root);
        while (goOn && !open_.empty()) {
            if (open_.back().done()) {
                open_.pop_back();
                if (!open_.empty()) open_.back().next();
                continue;
            }
            goOn = takeKey() && visit(open_.back().item());
        }
    }

private:
    /// Opens a container; handles any other item at once.
    bool visit(Item const* item) {
        bool const isNew = item && (item->referenceCount() == 1 || met_.insert(item).second);
        if (isNew && isContainer(item)) {
            open_.emplace_back(*item);
            return true;
        }
        bool const isText = isNew && item->type() == nxPLST::StringType;
        bool const goOn = !isText || add(static_cast<nxPLST::String const*>(item)->value());
        if (!open_.empty()) open_.back().next();
        return goOn;
    }

    bool takeKey() {
        Children const& children = open_.back();
        return children.container().type() == nxPLST::ArrayType || add(children.key());
    }

    bool add(urString::CString const& text) {
        return take_(text.view(), [this] {
            std::string path;
            for (Children const& children : open_) path += children.step();
            return path.empty() ? std::string(".") : path;
        });
    }

    Take take_;
    std::vector<Children> open_;
    std::unordered_set<Item const*> met_;
};

void reportMore(std::string const& name, std::uint64_t more) {
    if (more > 0) std::fprintf(stderr, "%s: %llu more losses\n", name.c_str(), static_cast<unsigned long long>(more));
}

}  // namespace

std::string located(std::string const& name, nxPLST::JsonLocation const& location, std::string_view reason) {
    return name + ":" + std::to_string(location.line) + ":" + std::to_string(location.column) + ": " +
           std::string(reason);
}

void reportLosses(std::string const& name, nxPLST::JsonReport const& report) {
    for (auto const& loss : report.losses) {
        std::string const what = std::string(nxPLST::describe(loss.kind)) + " at " + std::string(loss.path.view());
        std::fprintf(stderr, "%s\n", located(name, loss.location, what).c_str());
    }
    reportMore(name, report.lossCount - report.losses.size());
}

std::uint64_t reportCutTexts(std::string const& name, Item const* root) {
    std::uint64_t count = 0;
    TextWalk([&](std::string_view text, auto const& path) {
        if (text.find('\0') == std::string_view::npos) return true;
        if (++count <= nxPLST::JsonReport::mostLosses)
            std::fprintf(stderr, "%s: text cut at its NUL at %s\n", name.c_str(), path().c_str());
        return true;
    }).run(root);
    reportMore(name, count - std::min<std::uint64_t>(count, nxPLST::JsonReport::mostLosses));
    return count;
}

std::string pathOfBrokenText(Item const* root) {
    std::string broken;
    TextWalk([&](std::string_view text, auto const& path) {
        if (!urString::isUtf8(text)) broken = path();
        return broken.empty();
    }).run(root);
    return broken;
}

bool hasComments(std::string_view json) {
    bool isInside = false;
    for (std::size_t at = json.find_first_of("\"/"); at != json.npos; at = json.find_first_of("\"/\\", at + 1)) {
        if (json[at] == '"') isInside = !isInside;
        if (json[at] == '/' && !isInside) return true;
        if (json[at] == '\\') ++at;
    }
    return false;
}

}  // namespace nxplist
