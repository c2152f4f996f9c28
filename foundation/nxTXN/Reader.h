// Reads fields from their saved form.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "foundation/nxTXN/Writer.h"
#include "foundation/ur/Export.h"

namespace nxTXN {

/// Returns what a writer wrote: bytes and pointers, each in the order written.
///
/// Reading beyond the end returns zeros and null pointers. Refers to the saved form, which must outlive it.
class NX_API Reader {
public:
    Reader(std::span<std::byte const> data, std::span<std::uintptr_t const> words) noexcept
        : data_(data), words_(words) {}
    explicit Reader(Writer const& writer) noexcept : Reader(writer.data(), writer.words()) {}

    void readData(void* destination, std::size_t count) {
        if (count > data_.size()) return readShort(destination, count);
        if (count == 0) return;
        std::memcpy(destination, data_.data(), count);
        data_ = data_.subspan(count);
    }

    /// The address exactly as it was written.
    [[nodiscard]] void* readPtr();

    /// The number of unread bytes.
    [[nodiscard]] std::size_t remaining() const noexcept { return data_.size(); }

private:
    void readShort(void* destination, std::size_t count);
    std::uintptr_t nextWord() noexcept;

    std::span<std::byte const> data_;
    std::span<std::uintptr_t const> words_;
};

}  // namespace nxTXN
