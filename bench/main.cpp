// The benchmark program: prints one line per row; exits with 1 if a target is missed.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "bench/Suite.h"
#include "bench/rows.h"

int main(int argc, char** argv) {
    bench::Suite::Options options;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--quick") == 0) {
            options.quick = true;
        } else if (std::strcmp(argv[i], "--json") == 0 && i + 1 < argc) {
            options.jsonFile = argv[++i];
        } else if (std::strcmp(argv[i], "--files") == 0 && i + 1 < argc) {
            options.folder = argv[++i];
        } else if (std::strcmp(argv[i], "--large") == 0) {
            options.large = true;
        } else if (std::strcmp(argv[i], "--list") == 0) {
            options.list = true;
        } else if (std::strcmp(argv[i], "--side") == 0 && i + 1 < argc) {
            options.side = std::atoi(argv[++i]);
        } else if (argv[i][0] != '-') {
            options.filter = argv[i];
        } else {
            std::fprintf(stderr, "nxbench: %s is no option, or lacks its FILE or FOLDER\n", argv[i]);
            std::fprintf(stderr,
                         "usage: nxbench [--quick | --large] [--json FILE] [--files FOLDER] [--list] [PART OF THE "
                         "ROWS' NAMES]\n");
            return 2;
        }
    }
    bench::Suite suite(options);
    bench::addMemoryRows(suite);
    bench::addJsonRows(suite);
    bench::addTreeRows(suite);
    bench::addDictionaryRows(suite);
    bench::addPacketRows(suite);
    bench::addSignalRows(suite);
    bench::addMessagingRows(suite);
    bench::addCacheRows(suite);
    bench::addUndoRows(suite);
    bench::addPropertyRows(suite);
    bench::addLuaRows(suite);
    bench::addServiceRows(suite);
    bench::addDocumentRows(suite);
    if (suite.empty()) {
        std::fprintf(stderr, "nxbench: no row has %s in its name\n", options.filter.c_str());
        return 2;
    }
    if (!suite.writeJson()) {
        std::fprintf(stderr, "nxbench: cannot write %s\n", options.jsonFile.c_str());
        return 2;
    }
    return suite.allMet() ? 0 : 1;
}
