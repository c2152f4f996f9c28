// What the cache holds for a scene, and keys that build it on workers.
#pragma once

#include <optional>
#include <type_traits>

#include "examples/scene/Mesh.h"
#include "foundation/ur/hashfunction.h"
#include "krcache/Manager.h"
#include "support/messaging/JobQueue.h"

namespace scene {

using Shim = ur::Reference<urKRCache::Shim>;

/// A small picture, a row after the other.
struct Picture {
    int width = 0;
    std::vector<std::uint32_t> pixels;  ///< as 0xAARRGGBB
};

/// A mesh in the page file. Larger ones, which would hold up the program, are dropped like everything else and built
/// again by workers.
constexpr std::size_t mostPagedBytes = std::size_t(16) << 20U;
void writeData(urOS::IOStream& stream, urGeom::CompactMesh const& mesh);
void readData(urOS::IOStream& stream, std::shared_ptr<urGeom::CompactMesh const>& mesh);
[[nodiscard]] std::size_t bytesOf(urGeom::CompactMesh const& mesh);
[[nodiscard]] std::size_t bytesOf(Normals const& normals);
[[nodiscard]] std::size_t bytesOf(urGeom::MeshAdjVertices const& neighbours);
template <class T>
[[nodiscard]] std::size_t bytesOf(T const&) {
    return sizeof(T);
}
[[nodiscard]] std::size_t bytesOf(Picture const& picture);

// [resource]
/// Data that workers may share: while a worker or a frame uses it, dropping the resource does not end it.
template <class T>
class Shared final : public urKRCache::Resource {
public:
    explicit Shared(std::shared_ptr<T const> what) : data(std::move(what)), bytes_(bytesOf(*data)) {}

    std::shared_ptr<T const> data;

private:
    unsigned onGetSizeInBytes() const override { return static_cast<unsigned>(bytes_); }
    void onSerialize(urOS::IOStream& stream) override {
        if constexpr (requires { writeData(stream, *data); }) writeData(stream, *data);
        data = nullptr;
    }
    void onDeserialize(urOS::IOStream& stream) override {
        if constexpr (requires { readData(stream, data); }) readData(stream, data);
    }

    std::size_t const bytes_;
};
// [resource]

/// The data of a resource; null while there is none, for example because a worker is still busy with it.
template <class T>
[[nodiscard]] std::shared_ptr<T const> access(Shim const& shim) {
    if (!shim || !shim->manager()) return nullptr;
    auto const resource = shim->manager()->accessResource(shim);
    if constexpr (std::is_same_v<T, urGeom::CompactMesh>) {
        if (resource && resource->getSizeInBytes() <= mostPagedBytes) shim->manager()->setSerializable(shim);
    }
    return resource && shim->isResourceAllocated() ? static_cast<Shared<T> const&>(*resource).data : nullptr;
}

/// The steps from a mesh to what a view shows, each of another resource: two shims at most, and numbers.
struct Recipe {
    enum class Kind { neighbours, smoothed, normals, bounds, simplified, thumbnail };

    Kind kind;
    Shim source;
    Shim second = {};  ///< the neighbours, of a smoothed mesh
    Dab dab = {};      ///< of a smoothed mesh
};

// [key]
/// A key whose data a worker makes. Until that has ended there is no resource, and what is drawn does without it.
template <class T>
class JobKey : public urKRCache::KeyData {
public:
    using Data = std::shared_ptr<T const>;

    /// Takes data that was made already.
    void provide(Data data) const { made_ = std::move(data); }

protected:
    struct Work {
        std::string name;                                ///< shown to the user; empty for work that is done at once
        std::function<Data(nxSupport::Job*)> make = {};  ///< for any thread; null if a source is missing
    };

    explicit JobKey(nxSupport::JobQueue& jobs) : jobs_(jobs) {}
    [[nodiscard]] virtual Work prepare() const = 0;

private:
    ur::Reference<urKRCache::Resource> onCreateResource() const override {
        if (made_) return ur::make<Shared<T>>(std::exchange(made_, nullptr));
        Work const work = isAway_ ? Work() : prepare();
        if (!work.make) return nullptr;
        if (work.name.empty()) return ur::make<Shared<T>>(work.make(nullptr));
        isAway_ = true;
        auto const result = std::make_shared<Data>();
        ur::Reference<JobKey const> const self(this);
        jobs_.add(
            work.name, [make = work.make, result](nxSupport::Job& job) { *result = make(&job); },
            [self, result](nxSupport::Job const& job) {
                self->isAway_ = job.failed() || job.isCancelled();  // not tried again
                self->made_ = std::move(*result);
            });
        return nullptr;
    }

    nxSupport::JobQueue& jobs_;
    mutable Data made_;
    mutable bool isAway_ = false;  ///< a worker makes it, or could not
};
// [key]

/// Builds a resource from others: at once if they are small.
template <class T>
class DerivedKey final : public JobKey<T> {
public:
    DerivedKey(nxSupport::JobQueue& jobs, Recipe recipe) : JobKey<T>(jobs), recipe_(std::move(recipe)) {}

private:
    void onVisitSubKeys(urKRCache::KeyVisitor& visitor) const override {
        visitor.visit(recipe_.source.get());
        if (recipe_.second) visitor.visit(recipe_.second.get());
    }
    int onCompare(urKRCache::KeyData const* other) const override;
    unsigned onHash() const override {
        return this->getTypeHash() ^ static_cast<unsigned>(std::hash<urKRCache::Shim*>()(recipe_.source.get()));
    }
    typename JobKey<T>::Work prepare() const override;

    Recipe const recipe_;
};

/// The mesh of a file.
class FileKey final : public JobKey<urGeom::CompactMesh> {
public:
    FileKey(nxSupport::JobQueue& jobs, std::string path) : JobKey(jobs), path_(std::move(path)) {}

private:
    int onCompare(KeyData const* other) const override {
        return path_.compare(static_cast<FileKey const*>(other)->path_);
    }
    unsigned onHash() const override { return getTypeHash() ^ ur::hashfunction(path_); }
    Work prepare() const override;

    std::string const path_;
};

}  // namespace scene
