// Thumbnails of pictures in three stages, each kept by the cache: the file's bytes, the picture, the thumbnail.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "foundation/ur/hashfunction.h"
#include "foundation/urOS/AppOutput.h"
#include "krcache/Manager.h"
#include "krcache/debugChannel.h"

using ur::Reference;
using urKRCache::getKeyResourceManager;
using urKRCache::KeyData;
using urKRCache::Manager;
using urKRCache::Resource;
using urKRCache::Shim;

constexpr unsigned width = 640, height = 512, scale = 8;

// [resource]
/// Any number of values of one type. Every stage here is one of these.
template <class T>
struct Values : Resource {
    explicit Values(std::vector<T> what) : values(std::move(what)) {}

    unsigned onGetSizeInBytes() const override { return static_cast<unsigned>(values.size() * sizeof(T)); }
    void onSerialize(urOS::IOStream& stream) override {
        static_cast<void>(stream.write(values.data(), onGetSizeInBytes()));
        count = values.size();
        values = {};
    }
    void onDeserialize(urOS::IOStream& stream) override {
        values.resize(count);
        static_cast<void>(stream.read(values.data(), onGetSizeInBytes()));
    }

    std::vector<T> values;
    std::size_t count = 0;
};
// [resource]

// [file]
/// The bytes of a file; null if it is not a picture.
struct FileKey : KeyData {
    explicit FileKey(std::string where) : path(std::move(where)) {}

    int onCompare(KeyData const* other) const override {
        return path.compare(static_cast<FileKey const*>(other)->path);
    }
    unsigned onHash() const override { return getTypeHash() ^ ur::hashfunction(path); }
    Reference<Resource> onCreateResource() const override {
        std::ifstream file(path, std::ios::binary);
        using Bytes = std::istreambuf_iterator<char>;
        std::vector<char> bytes{Bytes(file), Bytes()};
        return bytes.size() == width * height ? ur::make<Values<char>>(std::move(bytes)) : nullptr;
    }

    std::string path;
};
// [file]

// [derived]
/// Builds from one other resource. Keys of one class with different sources are different keys.
struct DerivedKey : KeyData {
    explicit DerivedKey(Reference<Shim> from) : source(std::move(from)) {}

    void onVisitSubKeys(urKRCache::KeyVisitor& visitor) const override { visitor.visit(source.get()); }
    int onCompare(KeyData const* other) const override {
        Shim const* const theirs = static_cast<DerivedKey const*>(other)->source.get();
        return source == theirs ? 0 : std::less<>()(source.get(), theirs) ? -1 : 1;
    }
    unsigned onHash() const override {
        return getTypeHash() ^ static_cast<unsigned>(std::hash<Shim const*>()(source.get()));
    }

    /// The source's values, valid as long as `held` holds it. Null if there is no source to build from.
    template <class T>
    std::vector<T> const* sourceValues(Reference<Resource>& held) const {
        held = getKeyResourceManager().accessResource(source);
        return held ? &static_cast<Values<T>&>(*held).values : nullptr;
    }

    Reference<Shim> source;
};

/// The picture in a file, as brightness from 0 to 1.
struct PictureKey : DerivedKey {
    using DerivedKey::DerivedKey;
    Reference<Resource> onCreateResource() const override {
        Reference<Resource> held;
        std::vector<char> const* const bytes = sourceValues<char>(held);
        if (!bytes) return {};
        std::vector<float> pixels;
        for (char const byte : *bytes) pixels.push_back(static_cast<float>(static_cast<unsigned char>(byte)) / 255.0F);
        return ur::make<Values<float>>(std::move(pixels));
    }
};
// [derived]

/// One byte for each square of the picture.
struct ThumbnailKey : DerivedKey {
    using DerivedKey::DerivedKey;
    bool hasPredeterminedSize() const override { return true; }
    unsigned getPredeterminedSize() const override { return width / scale * (height / scale); }
    Reference<Resource> onCreateResource() const override {
        Reference<Resource> held;
        std::vector<float> const* const pixels = sourceValues<float>(held);
        if (!pixels) return {};
        std::vector<unsigned char> small;
        for (unsigned y = 0; y < height; y += scale) {
            for (unsigned x = 0; x < width; x += scale) {
                float sum = 0;
                for (unsigned i = 0; i < scale * scale; ++i) sum += (*pixels)[(y + i / scale) * width + x + i % scale];
                small.push_back(static_cast<unsigned char>(sum / (scale * scale) * 255));
            }
        }
        return ur::make<Values<unsigned char>>(std::move(small));
    }
};

void writePicture(std::string const& path, unsigned stripes) {
    std::ofstream file(path, std::ios::binary);
    for (unsigned i = 0; i < width * height; ++i) file.put(static_cast<char>(i % width * stripes / width % 2 * 255));
}

// [keys]
Reference<Shim> thumbnailOf(std::string const& path) {
    Manager& cache = getKeyResourceManager();
    auto const file = cache.getShim(ur::make<FileKey>(path), Shim::Retained);
    auto const picture = cache.getShim(ur::make<PictureKey>(file), Shim::Retained);
    auto thumbnail = cache.getShim(ur::make<ThumbnailKey>(picture), Shim::Retained);
    cache.setSerializable(thumbnail);
    return thumbnail;
}
// [keys]

// [draw]
void draw(Reference<Shim> const& thumbnail) {
    Manager& cache = getKeyResourceManager();
    cache.lockResource(thumbnail);
    if (auto const resource = cache.accessResource(thumbnail)) {
        auto const& pixels = static_cast<Values<unsigned char>&>(*resource).values;
        std::printf("%zu pixels, the last is %d\n", pixels.size(), pixels.back());
    } else {
        std::puts("no thumbnail");
    }
    cache.unlockResource(thumbnail);
}
// [draw]

Manager* theCache = nullptr;

/// The first argument is the limit of the cache in bytes.
int main(int argc, char** argv) {
    std::setbuf(stdout, nullptr);
    unsigned const limit = argc > 1 ? static_cast<unsigned>(std::strtoul(argv[1], nullptr, 10)) : 3 * 1048576;
    std::string name = (std::filesystem::temp_directory_path() / "thumbnailsXXXXXX").string();
    std::filesystem::path const folder = ::mkdtemp(name.data());
    std::vector<std::string> paths;
    for (unsigned i = 0; i < 3; ++i) {
        paths.push_back((folder / ("picture" + std::to_string(i))).string());
        writePicture(paths.back(), 2 + i);
    }
    {
        // [host]
        Manager cache(folder);
        theCache = &cache;
        urKRCache::setCacheManagerFunc([] { return theCache; });
        urKRCache::debugChannel().enable();
        cache.setMemoryLimit(limit);
        // [host]

        std::puts("--- three thumbnails");
        std::vector<Reference<Shim>> thumbnails;
        thumbnails.reserve(paths.size());
        for (std::string const& path : paths) thumbnails.push_back(thumbnailOf(path));
        // [interaction]
        cache.startInteraction();
        for (auto const& thumbnail : thumbnails) draw(thumbnail);
        cache.endInteraction();
        // [interaction]

        std::puts("--- memory is needed elsewhere");
        cache.clear();
        for (auto const& thumbnail : thumbnails) draw(thumbnail);

        std::puts("--- a file has changed");
        // [change]
        writePicture(paths[1], 9);
        cache.removeResource(cache.findShim(ur::make<FileKey>(paths[1])));
        draw(thumbnailOf(paths[1]));
        // [change]

        std::puts("--- in the end");
        urKRCache::Statistics const counts = cache.statistics();
        std::printf("%d keys, %zu builds, %zu dropped for the limit, %zu paged out, %zu back in\n", cache.numKeys(),
                    counts.builds, counts.clearedForLimit, counts.pagesOut, counts.pagesIn);
        cache.printDependencies(urOS::AppOutput::getInstance());
    }
    std::filesystem::remove_all(folder);
    return 0;
}
