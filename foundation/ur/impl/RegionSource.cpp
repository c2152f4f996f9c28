// Chunks of regions, shared by all threads.
#include "foundation/ur/impl/Region.h"

#include <bit>
#include <memory>
#include <new>

namespace ur::impl {

constexpr std::size_t regionsPerChunk = 8;
constexpr std::size_t chunkBytes = Region::bytes * regionsPerChunk;
constexpr auto regionAlignment = static_cast<std::align_val_t>(Region::bytes);
constexpr std::uint32_t allFree = (1U << regionsPerChunk) - 1;

/// The unit of allocation from the system.
struct Chunk {
    char* memory;
    std::uint32_t freeRegions;  // one bit per region
    Chunk* previous;
    Chunk* next;
};

namespace {

Chunk* makeChunk() {
    auto chunk = std::make_unique<Chunk>(Chunk{nullptr, allFree, nullptr, nullptr});
    chunk->memory = static_cast<char*>(::operator new(chunkBytes, regionAlignment));
    return chunk.release();
}

}  // namespace

RegionSource& RegionSource::instance() {
    static auto* source = new RegionSource;
    return *source;
}

Region* RegionSource::take() {
    std::lock_guard lock(mutex_);
    if (!withRoom_) {
        link(makeChunk());
        ++chunks_;
    }
    Chunk* chunk = withRoom_;
    if (chunk == empty_) empty_ = nullptr;
    auto const index = static_cast<std::size_t>(std::countr_zero(chunk->freeRegions));
    chunk->freeRegions &= chunk->freeRegions - 1;
    if (chunk->freeRegions == 0) unlink(chunk);
    auto* region = new (chunk->memory + index * Region::bytes) Region{};
    region->chunk = chunk;
    return region;
}

void RegionSource::put(Region* region) noexcept {
    std::lock_guard lock(mutex_);
    Chunk* chunk = region->chunk;
    if (chunk->freeRegions == 0) link(chunk);
    auto const offset = static_cast<std::size_t>(reinterpret_cast<char*>(region) - chunk->memory);
    chunk->freeRegions |= 1U << (offset / Region::bytes);
    if (chunk->freeRegions != allFree) return;
    if (!empty_) {
        empty_ = chunk;
        return;
    }
    unlink(chunk);
    --chunks_;
    ::operator delete(chunk->memory, regionAlignment);
    delete chunk;
}

std::size_t RegionSource::chunkCount() noexcept {
    std::lock_guard lock(mutex_);
    return chunks_;
}

void RegionSource::link(Chunk* chunk) noexcept {
    chunk->previous = nullptr;
    chunk->next = withRoom_;
    if (withRoom_) withRoom_->previous = chunk;
    withRoom_ = chunk;
}

void RegionSource::unlink(Chunk* chunk) noexcept {
    (chunk->previous ? chunk->previous->next : withRoom_) = chunk->next;
    if (chunk->next) chunk->next->previous = chunk->previous;
}

}  // namespace ur::impl
