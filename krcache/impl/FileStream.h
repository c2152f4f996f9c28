// The stream through which one resource writes or reads its payload.
#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>

#include "foundation/urOS/IOStream.h"
#include "krcache/impl/PageFile.h"

namespace urKRCache {

/// Moves bytes between a resource and its chunk in blocks, and keeps a checksum of each block in memory.
///
/// Never passes the chunk's end, and when reading never the end of what was written. The resource sees a failure only
/// as a short count; the manager calls `error` and decides what to do. The first failure stays, and afterwards no bytes
/// are moved. Streams on different chunks may be open at the same time.
class FileStream final : public urOS::IOStream {
public:
    enum class Direction { read, write };

    /// Requires: both outlive the stream, and the chunk stays in use.
    FileStream(PageFile& file, PageFileEntry& entry, Direction direction) noexcept
        : file_(file), entry_(entry), direction_(direction) {}
    FileStream(FileStream const&) = delete;
    FileStream& operator=(FileStream const&) = delete;
    ~FileStream() override;

    urUtil::Error read(void* buffer, std::size_t count, std::size_t* done = nullptr) override;
    urUtil::Error write(void const* buffer, std::size_t count, std::size_t* done = nullptr) override;

    /// Writes the buffered rest. No writes may follow.
    void finish() noexcept;
    [[nodiscard]] urUtil::Error const& error() const noexcept { return error_; }
    /// Null unless memory ran out.
    [[nodiscard]] std::exception_ptr const& thrown() const noexcept { return thrown_; }
    [[nodiscard]] bool failed() const noexcept { return thrown_ || error_.isError(); }
    /// Bytes moved to or from the file.
    [[nodiscard]] std::uint64_t transferred() const noexcept { return transferred_; }

private:
    template <class Work>
    void attempt(Direction direction, Work&& work) noexcept;
    std::size_t writeSome(char const* bytes, std::size_t count);
    std::size_t readSome(char* bytes, std::size_t count);
    void writeBlock(char const* bytes, std::size_t count);
    bool readBlock(char* bytes, std::size_t count);
    char* block();

    PageFile& file_;
    PageFileEntry& entry_;
    Direction direction_;
    urUtil::Error error_;
    std::exception_ptr thrown_;
    PageFile::Block block_;   ///< null until a block is moved in pieces
    std::size_t filled_ = 0;  ///< bytes in the block
    std::size_t taken_ = 0;   ///< bytes of the block that have been read
    std::uint64_t transferred_ = 0;
};

}  // namespace urKRCache
