// Item trees: copying, destroying, and the size of a node.
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <memory>

#include "bench/inputs.h"
#include "bench/peers.h"
#include "bench/rows.h"

namespace bench {
namespace {

constexpr int nodesPerRecord = 8;

double residentBytes() {
    double total = 0;
    double resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE));
}

/// The growth of the resident size by `build`, measured in a child process. Requires: this process has not held trees
/// yet, because the child would reuse their freed memory.
template <class Build>
double bytesOf(Build build) {
    int ends[2];
    if (pipe(ends) != 0) return 0;
    if (fork() == 0) {
        double const before = residentBytes();
        auto const* held = new auto(build());
        double const added = residentBytes() - before;
        keep(held);
        bool const sent = write(ends[1], &added, sizeof added) == sizeof added;
        _exit(sent ? 0 : 1);
    }
    double added = 0;
    bool const received = read(ends[0], &added, sizeof added) == sizeof added;
    close(ends[0]);
    close(ends[1]);
    wait(nullptr);
    return received ? added : 0;
}

std::unique_ptr<rapidjson::Document> rapidRecords(int records) {
    auto document = std::make_unique<rapidjson::Document>();
    buildRecords(*document, records);
    return document;
}

Sides copyAndDestroy(int records) {
    auto const ours = recordTree(records);
    auto const rapid = std::shared_ptr(rapidRecords(records));
    auto const boosts = std::make_shared<boost::json::value>(boostRecords(records));
    auto const nlohmanns = std::make_shared<nlohmann::json>(nlohmannRecords(records));
    return {{"nxPLST", [=] { return seconds([&] { keep(ours->clone()); }); }},
            {rapidName,
             [=] {
                 return seconds([&] {
                     rapidjson::Document copy;
                     copy.CopyFrom(*rapid, copy.GetAllocator());
                     keep(copy);
                 });
             }},
            {boostName, [=] { return seconds([&] { keep(boost::json::value(*boosts)); }); }},
            {nlohmannName, [=] { return seconds([&] { keep(nlohmann::json(*nlohmanns)); }); }}};
}

Sides bytesPerNode(int records) {
    double const nodes = nodesPerRecord * static_cast<double>(records);
    return {{"nxPLST", [=] { return bytesOf([=] { return recordTree(records); }) / nodes; }},
            {rapidName, [=] { return bytesOf([=] { return rapidRecords(records); }) / nodes; }},
            {boostName, [=] { return bytesOf([=] { return boostRecords(records); }) / nodes; }},
            {nlohmannName, [=] { return bytesOf([=] { return nlohmannRecords(records); }) / nodes; }}};
}

/// Copies a tree of `nodes` nodes and destroys the copy.
double lifeOfCopy(std::size_t nodes) {
    auto const tree = recordTree(static_cast<int>(nodes / nodesPerRecord));
    return seconds([&] { keep(tree->clone()); });
}

}  // namespace

void addMemoryRows(Suite& suite) {
    int const records = suite.scaled(125000);
    suite.compare(
        "tree-bytes-per-node/records", 0.6, [=] { return bytesPerNode(records); }, Unit::bytes);
}

void addTreeRows(Suite& suite) {
    int const records = suite.scaled(125000);
    suite.compare("tree-copy-destroy/records", 0.25, [=] { return copyAndDestroy(records); });
    suite.compareGrowth("tree-size", 1000, lifeOfCopy);
}

}  // namespace bench
