// Replaces the fuzzing engine in tests: runs every seed, and every prefix of it.
//   NAME_fuzz FOLDER...
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size);

namespace {

std::vector<char> contents(std::filesystem::path const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Copies each prefix to memory of its exact size, so that sanitizers detect reads beyond the end.
void play(std::vector<char> const& seed) {
    for (std::size_t size = 0; size <= seed.size(); ++size) {
        auto const bytes = std::make_unique<std::uint8_t[]>(size);
        std::copy_n(seed.begin(), size, bytes.get());
        LLVMFuzzerTestOneInput(bytes.get(), size);
    }
}

}  // namespace

int main(int argc, char** argv) {
    int played = 0;
    for (int i = 1; i < argc; ++i) {
        for (auto const& entry : std::filesystem::directory_iterator(argv[i])) {
            std::printf("%s\n", entry.path().c_str());
            play(contents(entry.path()));
            ++played;
        }
    }
    std::printf("%d seeds\n", played);
    return played > 0 ? 0 : 1;
}
