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

// [derived]
/// Builds a resource from others: at once if they are small, otherwise on a worker; until then there is none.
template <class T>
class DerivedKey final : public urKRCache::KeyData {
public:
    DerivedKey(nxSupport::JobQueue& jobs, Recipe recipe) : jobs_(jobs), recipe_(std::move(recipe)) {}

private:
    using Data = std::shared_ptr<T const>;
    using Make = std::function<Data()>;  // for any thread

    void onVisitSubKeys(urKRCache::KeyVisitor& visitor) const override {
        visitor.visit(recipe_.source.get());
        if (recipe_.second) visitor.visit(recipe_.second.get());
    }
    ur::Reference<urKRCache::Resource> onCreateResource() const override {
        if (made_) return ur::make<Shared<T>>(std::exchange(made_, nullptr));
        if (isBusy_) return nullptr;
        std::size_t triangles = 0;
        Make const make = prepare(triangles);
        if (!make) return nullptr;
        if (triangles <= mostAtOnce) return ur::make<Shared<T>>(make());
        isBusy_ = true;
        auto const result = std::make_shared<Data>();
        ur::Reference<DerivedKey const> const self(this);
        jobs_.add(
            "Preparing", [make, result](nxSupport::Job&) { *result = make(); },
            [self, result](nxSupport::Job const&) {
                self->made_ = std::move(*result);
                self->isBusy_ = false;
            });
        return nullptr;
    }
    // [derived]
    int onCompare(urKRCache::KeyData const* other) const override;
    unsigned onHash() const override {
        return getTypeHash() ^ static_cast<unsigned>(std::hash<urKRCache::Shim*>()(recipe_.source.get()));
    }
    /// Empty while a source is missing.
    Make prepare(std::size_t& triangles) const;

    static constexpr std::size_t mostAtOnce = 20000;

    nxSupport::JobQueue& jobs_;
    Recipe const recipe_;
    mutable Data made_;
    mutable bool isBusy_ = false;
};

/// The mesh of a file. A worker reads it when it is first needed; failures are reported once.
class FileKey final : public urKRCache::KeyData {
public:
    FileKey(nxSupport::JobQueue& jobs, std::string path) : jobs_(jobs), path_(std::move(path)) {}

    /// Takes a mesh that was read already.
    void provide(Mesh mesh) const { made_ = std::move(mesh); }

private:
    int onCompare(KeyData const* other) const override {
        return path_.compare(static_cast<FileKey const*>(other)->path_);
    }
    unsigned onHash() const override { return getTypeHash() ^ ur::hashfunction(path_); }
    ur::Reference<urKRCache::Resource> onCreateResource() const override;

    nxSupport::JobQueue& jobs_;
    std::string const path_;
    mutable Mesh made_;
    mutable bool isBusy_ = false;  ///< or has failed
};

}  // namespace scene
