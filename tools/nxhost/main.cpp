// nxhost: a host for Lua scripts that use libSupport.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

#include "foundation/urOS/AppOutput.h"
#include "foundation/urOS/AtomicFile.h"
#include "foundation/urOS/File.h"
#include "tools/nxhost/Host.h"
#include "tools/nxhost/Prompt.h"

namespace nxhost {
namespace {

using nxSupport::Context;
using urString::CString;

/// A file that cannot be read or written.
struct Failure {
    std::string message;
};

/// Opens closed standard streams, so that no file opened later gets their descriptors.
void reserveStandardFiles() {
    for (int const stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // Opened for the opposite direction, so that using it is still an error.
        if (fcntl(stream, F_GETFD) < 0)
            static_cast<void>(open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
    }
}

/// `about` precedes messages that do not name the file themselves.
void check(urUtil::Error const& error, std::string const& about = "") {
    if (error.isError()) throw Failure{about + (about.empty() ? "" : ": ") + std::string(error.message())};
}

CString contents(std::string const& path) {
    urOS::File file;
    check(path == "-" ? file.attach(STDIN_FILENO, urOS::File::Ownership::borrowed) : file.open(path, urOS::openRead));
    CString text;
    for (std::size_t done = 1; done > 0;) {
        constexpr std::size_t block = 1 << 16;
        std::size_t const before = text.size();
        text.resizeAndOverwrite(before + block, [&](char* bytes, std::size_t) {
            check(file.read(bytes + before, block, &done), path == "-" ? "standard input" : path);
            return before + done;
        });
    }
    return text;
}

/// The script without a first line that names its interpreter. The line's place stays, so that line numbers are right.
CString scriptIn(std::string const& path) {
    CString text = contents(path);
    if (text.startsWith("#")) text.erase(0, text.find('\n'));
    return text;
}

void runScripts(Host& host, Options const& options) {
    Context const context(&host.domain(), Context::Undecided);
    bool succeeded = true;
    for (auto code = options.code.begin(); code != options.code.end() && succeeded && !host.isEnding(); ++code)
        succeeded = host.run(*code, "=-e");
    if (options.script) {
        succeeded = host.run(scriptIn(*options.script),
                             *options.script == "-" ? "=stdin" : CString("@").append(*options.script));
    }
    if (options.prompt && !host.isEnding()) {
        Prompt(host).run();
    } else if (succeeded) {
        host.finish();
    }
}

/// Finds obstacles before any work is done.
void prepare(Options const& options, urOS::AtomicFile& trace) {
    if (!options.traceFile.empty()) check(trace.open(options.traceFile));
    if (std::string const& file = options.network.authorities; !file.empty())
        check(urOS::File().open(file, urOS::openRead));
}

int run(Options const& options) {
    urOS::AtomicFile trace;
    prepare(options, trace);
    Host host(options);
    if (options.listing) {
        urOS::AppOutput::getInstance().write(host.listing(*options.listing));
    } else {
        runScripts(host, options);
    }
    check(host.diagnostics().finish(trace), options.traceFile);
    if (!options.traceFile.empty()) check(trace.commit());
    return host.exitCode();
}

/// Flushes the output, because its last bytes may fail on a full disk.
int flushed(int exitCode) {
    if (exitCode == ExitCode::brokenPipe) return exitCode;
    bool const written = urOS::AppOutput::getInstance().flush().ok();
    if (std::fflush(stdout) == 0 && !std::ferror(stdout) && written) return exitCode;
    std::fprintf(stderr, "nxhost: cannot write to standard output\n");
    return ExitCode::unusable;
}

}  // namespace
}  // namespace nxhost

int main(int argc, char** argv) {
    using namespace nxhost;
    reserveStandardFiles();
    try {
        auto const options = readOptions(argc, argv);
        return flushed(options ? run(*options) : ExitCode::done);
    } catch (UsageError const& error) {
        std::fprintf(stderr, "nxhost: %s (nxhost --help tells more)\n", error.message.c_str());
    } catch (Failure const& failure) {
        std::fprintf(stderr, "nxhost: %s\n", failure.message.c_str());
    } catch (std::exception const& error) {
        std::fprintf(stderr, "nxhost: %s\n", error.what());
    }
    return ExitCode::unusable;
}
