// The commands, and their descriptions in the manual.
#include "tools/nxplist/commands.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <iterator>

#include "plst/JsonReport.h"
#include "plst/Path.h"
#include "plst/casts.h"
#include "tools/nxplist/Comparison.h"
#include "tools/nxplist/Document.h"
#include "tools/nxplist/Edit.h"
#include "tools/nxplist/Losses.h"
#include "tools/nxplist/Options.h"
#include "tools/nxplist/Patch.h"
#include "tools/nxplist/Statistics.h"

namespace nxplist {
namespace {

/// Refuses to read standard input twice, because the second time it is empty.
void requireOneStandardInput(Options const& options) {
    if (std::ranges::count(options.files, "-") > 1) throw UsageError{"standard input can be read only once"};
}

std::string fileOr(Options const& options, std::size_t index, char const* otherwise) {
    return index < options.files.size() ? options.files[index] : otherwise;
}

Form formFor(Options const& options, std::string const& output, Form input) {
    if (options.to) return *options.to;
    if (output.ends_with(".json")) return Form::json;
    if (output.ends_with(".jsonl") || options.lines) return Form::lines;
    if (output.ends_with(".nxp")) return Form::packets;
    if (output.ends_with(".txt")) return Form::dump;
    return input == Form::packets ? Form::json : Form::packets;
}

Losses lossesFor(Options const& options) { return options.strict ? Losses::refused : Losses::told; }

Document loadFile(Options const& options, std::size_t index) {
    return load(fileOr(options, index, "-"), options.inputForm(), lossesFor(options));
}

bool areSameFile(std::string const& input, std::string const& output) {
    std::error_code none;
    return output != "-" && std::filesystem::equivalent(input == "-" ? "/dev/stdin" : input, output, none);
}

/// Writes a document.
int put(Options const& options, Document const& document, std::string const& output, Form form) {
    std::uint64_t const cut = form == Form::packets ? reportCutTexts(document.name, document.root.get()) : 0;
    if (cut > 0 && options.strict) return ExitCode::negative;
    bool const isLess = document.losses > 0 || cut > 0 || document.hasComments || form == Form::dump;
    if (isLess && !options.force && areSameFile(fileOr(options, 0, "-"), output)) {
        throw Failure{ExitCode::negative, printable(output) + ": not replaced by less than it holds (--force does)"};
    }
    store(document, output, form, options.style);
    return ExitCode::done;
}

int convert(Options const& options) {
    std::string const output = fileOr(options, 1, "-");
    Document const document = loadFile(options, 0);
    return put(options, document, output, formFor(options, output, document.form));
}

int check(Options const& options) {
    int result = ExitCode::done;
    auto const checkOne = [&](std::string const& file) {
        try {
            load(file, options.inputForm(), lossesFor(options));
        } catch (Failure const& failure) {
            report(failure);
            result = std::max(result, failure.exitCode);
        }
    };
    requireOneStandardInput(options);
    if (options.files.empty()) checkOne("-");
    for (auto const& file : options.files) checkOne(file);
    return result;
}

int print(Options const& options) {
    Document const document = loadFile(options, 0);
    bool const areLines = options.lines || document.form == Form::lines;
    return put(options, document, "-", options.to.value_or(areLines ? Form::lines : Form::json));
}

int stat(Options const& options) {
    constexpr char const* names[] = {"booleans", "numbers", "texts", "arrays", "dictionaries"};
    constexpr std::size_t largestShown = 5;
    Document const document = loadFile(options, 0);
    Statistics const statistics = document.root ? statisticsOf(*document.root, largestShown) : Statistics();
    auto const number = [](std::uint64_t value) { return static_cast<unsigned long long>(value); };
    constexpr char const* forms[] = {"json", "lines", "packets"};
    std::printf("form          %s\n", forms[static_cast<std::size_t>(document.form)]);
    for (std::size_t type = 0; type < std::size(names); ++type)
        std::printf("%-13s %llu\n", names[type], number(statistics.countByType[type]));
    std::printf("keys          %llu\ndepth         %llu\nbytes         %llu\n", number(statistics.keys),
                number(statistics.depth), number(statistics.bytes));
    if (!statistics.largest.empty()) std::puts("largest subtrees:");
    for (auto const& subtree : statistics.largest) {
        std::printf("  %12llu bytes %9llu items  %s\n", number(subtree.bytes), number(subtree.items),
                    subtree.path.c_str());
    }
    return ExitCode::done;
}

nxPLST::Path pathFrom(std::string const& text) {
    std::string error;
    auto const path = nxPLST::parsePath(text, error);
    return path ? *path : throw UsageError{error};
}

/// The value at a path, or all values that match a pattern. Throws `Failure` if there is none.
std::vector<ur::Reference<nxPLST::Item const>> valuesAt(Document const& document, nxPLST::Pattern const& pattern,
                                                        Options const& options) {
    std::string error = "nothing at " + printable(options.files[1]);
    std::vector<ur::Reference<nxPLST::Item const>> values;
    if (pattern.size() == 1) {
        if (auto value = nxPLST::follow(document.root, pattern.front(), error)) values.push_back(std::move(value));
    } else {
        requireWithin(document.root.get(), document.name, options.style.mostExpandedBytes);
        values = nxPLST::followAll(document.root, pattern);
    }
    if (values.empty()) throw Failure{ExitCode::negative, document.name + ": " + error};
    return values;
}

int get(Options const& options) {
    std::string error;
    auto const pattern = nxPLST::parsePattern(options.files[1], error);
    if (!pattern) throw UsageError{error};
    Document const document = loadFile(options, 0);
    for (auto const& value : valuesAt(document, *pattern, options)) {
        auto const string = options.raw ? nxPLST::asString(value) : nullptr;
        printText(string ? string->value() + "\n" : jsonText(value, document, options));
    }
    return ExitCode::done;
}

ur::Reference<nxPLST::Item> valueFrom(Options const& options, std::string const& text) {
    if (options.raw) return ur::make<nxPLST::String>(text);
    ur::Reference<nxPLST::Item> value;
    nxPLST::JsonReport report;
    if (!nxPLST::convertFromJSON(value, text, report)) {
        throw Failure{ExitCode::negative, located("VALUE", report.location, report.reason.view()) +
                                              " (a text that is no JSON needs --raw)"};
    }
    if (!value || report.lossCount > 0) throw Failure{ExitCode::negative, "VALUE: no property list holds all of it"};
    return value;
}

/// Writes the document back into its file, in its form.
int putBack(Options const& options, Document const& document) {
    return put(options, document, options.files[0], document.form);
}

int set(Options const& options) {
    auto const path = pathFrom(options.files[1]);
    auto value = valueFrom(options, options.files[2]);
    Document document = loadFile(options, 0);
    std::string error;
    if (!setAt(document.root, path, std::move(value), error))
        throw Failure{ExitCode::negative, document.name + ": " + error};
    return putBack(options, document);
}

int deletePlace(Options const& options) {
    auto const path = pathFrom(options.files[1]);
    Document document = loadFile(options, 0);
    std::string error;
    if (!deleteAt(document.root, path, error)) throw Failure{ExitCode::negative, document.name + ": " + error};
    return putBack(options, document);
}

/// Loads both files. `goesThroughEachPlace`: also checks that visiting every place of shared items ends in time.
std::array<Document, 2> loadPair(Options const& options, bool goesThroughEachPlace) {
    requireOneStandardInput(options);
    std::array<Document, 2> pair{loadFile(options, 0), loadFile(options, 1)};
    for (Document const& document : pair) {
        if (goesThroughEachPlace) requireWithin(document.root.get(), document.name, options.style.mostExpandedBytes);
    }
    return pair;
}

int same(Options const& options) {
    auto const [first, second] = loadPair(options, options.shape);
    if (!first.root || !second.root) return first.root == second.root ? ExitCode::done : ExitCode::negative;
    if (options.shape) return first.root->congruent(*second.root) ? ExitCode::done : ExitCode::negative;
    int result = ExitCode::done;
    compareTrees(
        first.root.get(), second.root.get(),
        [&](std::string const&) {
            result = ExitCode::negative;
            return false;
        },
        brief);
    return result;
}

int diff(Options const& options) {
    auto const [first, second] = loadPair(options, true);
    int result = ExitCode::done;
    auto const print = [&](std::string const& line) {
        result = ExitCode::negative;
        std::printf("%s\n", line.c_str());
        return true;
    };
    compareTrees(first.root.get(), second.root.get(), print, options.brief ? brief : inFull);
    return result;
}

int patch(Options const& options) {
    requireOneStandardInput(options);
    if (options.files.size() == 1 && options.files[0] == "-") {
        throw UsageError{"standard input can be read only once"};
    }
    Document document = loadFile(options, 0);
    std::string const name = fileOr(options, 1, "-");
    applyDifferences(document, inputName(name), contents(name).view());
    return putBack(options, document);
}

constexpr Command table[] = {
    {"convert", convert, "[FILE] [OUTPUT]", Takes::to | Takes::style | Takes::limit | Takes::force,
     "write FILE in another form",
     R"(The form is that of --to, else the one that OUTPUT's ending names (.json, .jsonl, .nxp,
.txt), else JSON for packets and packets for JSON. Without OUTPUT, or with "-", standard
output is written. Packets hold texts and keys up to their first NUL character only.
FILE itself is not replaced by less than it holds: with losses, without its comments, or
by a dump; --force does that.)"},
    {"check", check, "[FILE...]", 0, "tell whether each FILE can be read", "Prints nothing for a good file."},
    {"print", print, "[FILE]", Takes::to | Takes::style | Takes::limit, "print FILE as indented JSON, or as --to says",
     "Numbers are printed so that they read back as they are."},
    {"stat", stat, "[FILE]", 0, "print counts by kind, depth, bytes in memory and the largest subtrees",
     "An item in several places counts once, where it comes first."},
    {"get", get, "FILE PATH", Takes::raw | Takes::style | Takes::limit,
     "print the value at PATH, such as .countries[3].name",
     R"(A key that is not made of letters, digits, "_" and "-" is written in double quotes:
."two words"[0] or ["two words"][0]. The path "." is the whole tree; [-1] is the last
element. [*] stands for every element or member, and all values are printed that are
there: .countries[*].name.)"},
    {"set", set, "FILE PATH VALUE", Takes::raw | Takes::style | Takes::limit | Takes::force,
     "put VALUE, which is JSON, at PATH in FILE",
     R"(The last step of PATH may be a new key, or the index behind the last element. With --raw
VALUE is a text as it stands. FILE keeps its form and is replaced as a whole; "-" reads
standard input and writes standard output. FILE is not replaced by less than it holds,
such as without its comments; --force does that.)"},
    {"delete", deletePlace, "FILE PATH", Takes::style | Takes::limit | Takes::force,
     "take away the value at PATH in FILE", "FILE is replaced as by set."},
    {"same", same, "FILE FILE", Takes::limit | Takes::shape,
     "tell by the exit code whether two files hold the same tree",
     "With --shape only kinds, sizes and keys are compared."},
    {"diff", diff, "FILE FILE", Takes::limit | Takes::brief, "print every path at which two files differ",
     "What it prints makes the second file of the first by patch."},
    {"patch", patch, "FILE [DIFF]", Takes::style | Takes::limit | Takes::force,
     "change FILE as DIFF says, which diff has printed",
     R"(Without DIFF standard input is read. All of it fits or nothing is changed. FILE is
replaced as by set.)"},
};

}  // namespace

std::span<Command const> commands() { return table; }

}  // namespace nxplist
