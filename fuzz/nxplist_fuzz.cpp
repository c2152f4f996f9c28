// The input is a path on the first line and a document after it. The document must be refused in one line or printed in
// every form, and the path must mean the same after it has been spelled out.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/require.h"
#include "plst/Path.h"
#include "tools/nxplist/Comparison.h"
#include "tools/nxplist/Document.h"
#include "tools/nxplist/Patch.h"
#include "tools/nxplist/Statistics.h"

namespace {

using nxPLST::Path;

/// The input as a file with a name.
class MemoryFile {
public:
    explicit MemoryFile(std::string_view bytes) : file_(memfd_create("document", 0)) {
        require(file_ >= 0 && write(file_, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()),
                "there is room for the document");
    }
    MemoryFile(MemoryFile const&) = delete;
    MemoryFile& operator=(MemoryFile const&) = delete;
    ~MemoryFile() { close(file_); }

    [[nodiscard]] std::string path() const { return "/proc/self/fd/" + std::to_string(file_); }

private:
    int file_;
};

void checkPath(std::string_view text, ur::Reference<nxPLST::Item const> const& root) {
    std::string error;
    auto const path = nxPLST::parsePath(text, error);
    require(path || !error.empty(), "what is no path has a reason");
    if (!path) return;
    std::string spelled;
    for (auto const& step : *path) spelled += nxPLST::stepText(step);
    require(nxPLST::parsePath(spelled.empty() ? "." : spelled, error) == path, "a path can be spelled out");
    bool const found = nxPLST::follow(root, *path, error) != nullptr;
    require(found || !error.empty(), "what is not there is named");
}

bool unexpected(std::string const& difference) {
    require(false, difference.c_str());
    return false;
}

void checkTree(ur::Reference<nxPLST::Item> const& root) {
    nxplist::compareTrees(root.get(), root.get(), unexpected, nxplist::brief);
    if (!root) return;
    require(!nxplist::brief(root.get()).empty(), "a value has a short form");
    auto const statistics = nxplist::statisticsOf(*root, 3);
    std::uint64_t items = 0;
    for (auto const count : statistics.countByType) items += count;
    require(items > 0 && statistics.largest.size() <= 3, "every item is counted");
    auto const copy = root->clone();
    nxplist::compareTrees(root.get(), copy.get(), unexpected, nxplist::inFull);
}

/// Tries any text as a file of lines, and as differences to any tree.
void checkTexts(MemoryFile const& file, ur::Reference<nxPLST::Item> const& root) {
    auto const refusedInOneLine = [](auto read) {
        try {
            read();
        } catch (nxplist::Failure const& failure) {
            require(failure.exitCode == 1 && !failure.message.empty(), "what is refused is invalid, and says why");
        }
    };
    refusedInOneLine([&] { checkTree(nxplist::load(file.path(), nxplist::Form::lines, nxplist::Losses::quiet).root); });
    if (!root) return;
    nxplist::Document document;
    document.root = root->clone();
    refusedInOneLine([&] { nxplist::applyDifferences(document, "differences", nxplist::contents(file.path())); });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    std::string_view const input(reinterpret_cast<char const*>(bytes), size);
    auto const line = std::min(input.find('\n'), size);
    MemoryFile const file(input.substr(std::min(line + 1, size)));
    ur::Reference<nxPLST::Item> root;
    try {
        root = nxplist::load(file.path(), std::nullopt, nxplist::Losses::quiet).root;
        checkTree(root);
    } catch (nxplist::Failure const& failure) {
        require(failure.exitCode == 1 && !failure.message.empty(), "what is refused is invalid, and says why");
    }
    checkPath(input.substr(0, line), root);
    checkTexts(file, root);
    return 0;
}
