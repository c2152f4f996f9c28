// nxplist: property lists on the command line.
#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <new>

#include "plst/casts.h"
#include "tools/nxplist/Comparison.h"
#include "tools/nxplist/Document.h"
#include "tools/nxplist/Losses.h"
#include "tools/nxplist/Options.h"
#include "tools/nxplist/Path.h"
#include "tools/nxplist/Statistics.h"

namespace nxplist {
namespace {

void tell(Failure const& failure) {
    if (!failure.message.empty()) std::fprintf(stderr, "%s\n", failure.message.c_str());
}

/// A second reading of the standard input would find nothing.
void requireOneStandardInput(Options const& options) {
    if (std::ranges::count(options.files, "-") > 1) throw UsageError{"standard input can be read only once"};
}

std::string fileOr(Options const& options, std::size_t index, char const* otherwise) {
    return index < options.files.size() ? options.files[index] : otherwise;
}

Form formFor(Options const& options, std::string const& output, Form input) {
    if (options.to) return *options.to;
    if (output.ends_with(".json")) return Form::json;
    if (output.ends_with(".nxp")) return Form::packets;
    if (output.ends_with(".txt")) return Form::dump;
    return input == Form::json ? Form::packets : Form::json;
}

Losses lossesFor(Options const& options) { return options.strict ? Losses::refused : Losses::told; }

Document loadFile(Options const& options, std::size_t index) {
    return load(fileOr(options, index, "-"), options.from, lossesFor(options));
}

bool areSameFile(std::string const& input, std::string const& output) {
    std::error_code none;
    return output != "-" && std::filesystem::equivalent(input == "-" ? "/dev/stdin" : input, output, none);
}

/// Writes the document that was read from the first file.
int put(Options const& options, Document const& document, std::string const& output, Form form) {
    std::uint64_t const cut = form == Form::packets ? tellCutTexts(document.name, document.root.get()) : 0;
    if (cut > 0 && options.strict) return ExitCode::negative;
    bool const isLess = document.losses > 0 || cut > 0 || document.hasComments || form == Form::dump;
    if (isLess && !options.force && areSameFile(fileOr(options, 0, "-"), output)) {
        throw Failure{ExitCode::negative, printable(output) + ": not replaced by less than it holds (--force does)"};
    }
    store(document, output, form, options.limit);
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
            load(file, options.from, lossesFor(options));
        } catch (Failure const& failure) {
            tell(failure);
            result = std::max(result, failure.exitCode);
        }
    };
    requireOneStandardInput(options);
    if (options.files.empty()) checkOne("-");
    for (auto const& file : options.files) checkOne(file);
    return result;
}

int print(Options const& options) { return put(options, loadFile(options, 0), "-", options.to.value_or(Form::json)); }

int stat(Options const& options) {
    constexpr char const* names[] = {"booleans", "numbers", "texts", "arrays", "dictionaries"};
    constexpr std::size_t largestShown = 5;
    Document const document = loadFile(options, 0);
    Statistics const statistics = document.root ? statisticsOf(*document.root, largestShown) : Statistics();
    auto const number = [](std::uint64_t value) { return static_cast<unsigned long long>(value); };
    std::printf("form          %s\n", document.form == Form::json ? "json" : "packets");
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

int get(Options const& options) {
    std::string error;
    auto const path = parsePath(options.files[1], error);
    if (!path) throw UsageError{error};
    Document const document = loadFile(options, 0);
    auto const value = follow(document.root, *path, error);
    if (!value) throw Failure{ExitCode::negative, document.name + ": " + error};
    auto const string = options.raw ? nxPLST::asString(value) : nullptr;
    printText(string ? string->value() + "\n" : strictJson(value, document, options.limit));
    return ExitCode::done;
}

/// Both files, once it is sure that going through each place of a shared item comes to an end.
std::array<Document, 2> loadPair(Options const& options, bool goesThroughEachPlace) {
    requireOneStandardInput(options);
    std::array<Document, 2> pair{loadFile(options, 0), loadFile(options, 1)};
    for (Document const& document : pair) {
        if (goesThroughEachPlace) requireWithin(document.root.get(), document.name, options.limit);
    }
    return pair;
}

int same(Options const& options) {
    auto const [first, second] = loadPair(options, options.shape);
    if (!first.root || !second.root) return first.root == second.root ? ExitCode::done : ExitCode::negative;
    if (options.shape) return first.root->congruent(*second.root) ? ExitCode::done : ExitCode::negative;
    int result = ExitCode::done;
    compareTrees(first.root.get(), second.root.get(), [&](std::string const&) {
        result = ExitCode::negative;
        return false;
    });
    return result;
}

int diff(Options const& options) {
    auto const [first, second] = loadPair(options, true);
    int result = ExitCode::done;
    compareTrees(first.root.get(), second.root.get(), [&](std::string const& line) {
        result = ExitCode::negative;
        std::printf("%s\n", line.c_str());
        return true;
    });
    return result;
}

constexpr struct {
    std::string_view name;
    int (*run)(Options const&);
} runners[] = {{"convert", convert}, {"check", check}, {"print", print}, {"stat", stat},
               {"get", get},         {"same", same},   {"diff", diff}};

int run(Options const& options) {
    if (!options.command) return ExitCode::done;
    for (auto const& runner : runners) {
        if (runner.name == options.command->name) return runner.run(options);
    }
    return ExitCode::unusable;
}

/// What was printed may still be in the buffer, and the disk full.
int flushed(int exitCode) {
    if (std::fflush(stdout) == 0 && !std::ferror(stdout)) return exitCode;
    std::fprintf(stderr, "nxplist: cannot write to standard output\n");
    return ExitCode::unusable;
}

}  // namespace
}  // namespace nxplist

int main(int argc, char** argv) {
    using namespace nxplist;
    try {
        return flushed(run(readOptions(argc, argv)));
    } catch (UsageError const& error) {
        std::fprintf(stderr, "nxplist: %s (nxplist --help tells more)\n", printable(error.message).c_str());
        return ExitCode::unusable;
    } catch (Failure const& failure) {
        tell(failure);
        return failure.exitCode;
    } catch (std::bad_alloc const&) {
        std::fprintf(stderr, "nxplist: out of memory\n");
        return ExitCode::unusable;
    }
}
