// nxplist: property lists on the command line.
#include <cstdio>
#include <new>

#include "tools/nxplist/Document.h"
#include "tools/nxplist/Options.h"

namespace nxplist {
namespace {

int run(Options const& options) { return options.command ? options.command->run(options) : ExitCode::done; }

/// Flushes the output, because its last bytes may fail on a full disk.
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
        report(failure);
        return failure.exitCode;
    } catch (std::bad_alloc const&) {
        std::fprintf(stderr, "nxplist: out of memory\n");
        return ExitCode::unusable;
    }
}
