// Applies lines such as `.brush.size: 4 -> 6` to a tree.
#include "tools/nxplist/Patch.h"

#include <optional>
#include <utility>
#include <vector>

#include "plst/json.h"
#include "tools/nxplist/Comparison.h"
#include "tools/nxplist/Edit.h"

namespace nxplist {
namespace {

using Value = ur::Reference<nxPLST::Item>;
using nxPLST::Path;

/// A place with its values before and after; null for none.
struct Difference {
    Path path;
    Value before;
    Value after;
};

Value valueFrom(std::string_view json) {
    Value value;
    return nxPLST::convertFromJSON(value, json) ? value : nullptr;
}

/// Splits the text at a separator so that both parts can be read. Tries every occurrence, because keys and texts may
/// contain the separator.
template <class First, class Second>
bool splitAt(std::string_view separator, std::string_view text, First first, Second second) {
    for (auto at = text.find(separator); at != text.npos; at = text.find(separator, at + 1)) {
        if (first(text.substr(0, at)) && second(text.substr(at + separator.size()))) return true;
    }
    return false;
}

bool readChange(std::string_view text, Difference& difference) {
    constexpr std::string_view removed = "only in the first: ", added = "only in the second: ";
    if (text.starts_with(removed)) return !!(difference.before = valueFrom(text.substr(removed.size())));
    if (text.starts_with(added)) return !!(difference.after = valueFrom(text.substr(added.size())));
    return splitAt(
        " -> ", text, [&](std::string_view json) { return !!(difference.before = valueFrom(json)); },
        [&](std::string_view json) { return !!(difference.after = valueFrom(json)); });
}

std::optional<Difference> readLine(std::string_view line) {
    Difference difference;
    std::string unused;
    auto const readPath = [&](std::string_view text) {
        auto path = nxPLST::parsePath(text, unused);
        if (path) difference.path = std::move(*path);
        return path.has_value();
    };
    auto const rest = [&](std::string_view text) { return readChange(text, difference); };
    return splitAt(": ", line, readPath, rest) ? std::optional(std::move(difference)) : std::nullopt;
}

bool fits(Value const& root, Difference const& difference) {
    std::string unused;
    auto const found = nxPLST::follow(root, difference.path, unused);
    return found && difference.before ? *found == *difference.before : !found && !difference.before;
}

[[noreturn]] void refuseLine(std::string const& name, std::size_t number, std::string const& why) {
    std::string message = name;
    message.append(":").append(std::to_string(number)).append(": ").append(why);
    throw Failure{ExitCode::negative, message};
}

}  // namespace

void applyDifferences(Document& document, std::string const& name, std::string_view lines) {
    std::vector<std::pair<std::size_t, Path>> removals;  // last first, so that the remaining elements keep their
                                                         // positions
    std::string error;
    for (std::size_t number = 1; !lines.empty(); ++number) {
        auto const end = std::min(lines.find('\n'), lines.size());
        auto difference = readLine(lines.substr(0, end));
        auto const refuse = [&](std::string const& why) { refuseLine(name, number, why); };
        if (!difference) refuse("no line that diff prints without --brief");
        if (!fits(document.root, *difference)) refuse(document.name + " differs there");
        if (!difference->after) {
            removals.emplace_back(number, std::move(difference->path));
        } else if (!setAt(document.root, difference->path, std::move(difference->after), error)) {
            refuse(document.name + ": " + error);
        }
        lines.remove_prefix(std::min(end + 1, lines.size()));
    }
    for (auto removal = removals.rbegin(); removal != removals.rend(); ++removal) {
        if (deleteAt(document.root, removal->second, error)) continue;
        refuseLine(name, removal->first, error);
    }
}

}  // namespace nxplist
