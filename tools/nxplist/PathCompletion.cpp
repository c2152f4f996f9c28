// Completes a path that is being typed.
#include "tools/nxplist/PathCompletion.h"

#include <cstdio>
#include <string>

#include "plst/Path.h"
#include "tools/nxplist/Document.h"
#include "tools/nxplist/Options.h"
#include "tools/nxplist/Walk.h"

namespace nxplist {
namespace {

/// The longest prefix of `text` that is a path and precedes a step that may still be incomplete.
std::string_view completeSteps(std::string_view text) {
    std::string unused;
    for (std::size_t end = text.size(); end > 0;) {
        end = text.find_last_of(".[", end - 1);
        if (end == text.npos) break;
        if (nxPLST::parsePath(text.substr(0, end), unused)) return text.substr(0, end);
    }
    return {};
}

/// The step to a child as the user writes it: a key that begins with a bracket is `["key"]`.
std::string stepLike(std::string_view typed, std::string step) {
    if (!typed.starts_with('[') || step.starts_with('[')) return step;
    std::string const key = step.substr(1);
    return key.starts_with('"') ? "[" + key + "]" : "[\"" + key + "\"]";
}

}  // namespace

void printPathCompletions(std::string_view text, std::string_view command, std::span<char const* const> before) try {
    std::string unused;
    Options const options = readBeforePath(std::string(command), before);
    if (options.files.empty() || options.files[0] == "-") return;
    Document const document = load(options.files[0], options.inputForm(), Losses::quiet);
    std::string_view const steps = completeSteps(text);
    auto const path = nxPLST::parsePath(steps, unused);
    auto const parent = path ? nxPLST::follow(document.root, *path, unused) : nullptr;
    if (!isContainer(parent.get())) return;
    for (Children children(*parent); !children.done(); children.next()) {
        std::string const candidate = std::string(steps) + stepLike(text.substr(steps.size()), children.step());
        if (candidate.starts_with(text)) std::printf("%s\n", candidate.c_str());
    }
} catch (Failure const&) {
} catch (UsageError const&) {
}

}  // namespace nxplist
