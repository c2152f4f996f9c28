// A stream in memory.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "foundation/ur/Export.h"
#include "foundation/ur/containers.h"
#include "foundation/urOS/IOStream.h"
#include "foundation/urOS/OpenMode.h"

namespace urOS {

/// Keeps written data in blocks of one size, so that growing never copies, and returns it on reading.
///
/// The contents outlive `close`: read them through the blocks, or open the stream again for reading.
class NX_API MemoryIOStream final : public IOStream {
public:
    /// Requires: a block size of at least 1.
    explicit MemoryIOStream(std::size_t blockSize = 4096) noexcept : blockSize_(blockSize) {}

    /// Starts at the beginning of the contents, with `openAppend` at their end; `openNew` drops them.
    urUtil::Error open(OpenMode mode);
    urUtil::Error close();

    urUtil::Error read(void* buffer, std::size_t count, std::size_t* done = nullptr) override;
    /// Overwrites from the current position on.
    urUtil::Error write(void const* buffer, std::size_t count, std::size_t* done = nullptr) override;

    /// An error, without moving, beyond the end of the contents.
    urUtil::Error seek(std::size_t position);
    [[nodiscard]] std::size_t tell() const noexcept { return position_; }
    [[nodiscard]] std::size_t size() const noexcept { return size_; }

    [[nodiscard]] std::size_t blockCount() const noexcept { return blocks_.size(); }
    /// The bytes of one block; all blocks but the last are full. Valid until the next write.
    [[nodiscard]] std::string_view block(std::size_t index) const noexcept;
    /// All blocks in one text.
    [[nodiscard]] urString::CString contents() const;

private:
    OpenMode mode_ = {};
    std::size_t blockSize_;
    std::size_t position_ = 0;
    std::size_t size_ = 0;
    ur::vector<std::unique_ptr<char[]>> blocks_;
};

}  // namespace urOS
