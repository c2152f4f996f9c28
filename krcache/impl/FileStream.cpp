// Moves a payload block by block.
#include "krcache/impl/FileStream.h"

#define XXH_INLINE_ALL  // nothing of it is exported or linked
#include <xxhash.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace urKRCache {

using urUtil::Error;

FileStream::~FileStream() {
    if (block_) file_.giveBlock(std::move(block_));
}

template <class Work>
void FileStream::attempt(Direction direction, Work&& work) noexcept {
    if (failed()) return;
    try {
        if (direction != direction_) {
            error_ = Error(EBADF, "the stream goes the other way");
            return;
        }
        work();
    } catch (...) {
        thrown_ = std::current_exception();
    }
}

Error FileStream::write(void const* buffer, std::size_t count, std::size_t* done) {
    std::size_t moved = 0;
    attempt(Direction::write, [&] {
        while (moved < count && error_.ok())
            moved += writeSome(static_cast<char const*>(buffer) + moved, count - moved);
    });
    if (done) *done = moved;
    return {};
}

std::size_t FileStream::writeSome(char const* bytes, std::size_t count) {
    std::uint64_t const room = entry_.size_ - transferred_ - filled_;
    if (room == 0) {
        error_ = Error(EFBIG, "the resource writes more than its size");
        return 0;
    }
    std::size_t const part = std::min({count, file_.blockSize() - filled_, static_cast<std::size_t>(room)});
    if (part == file_.blockSize()) {
        writeBlock(bytes, part);
        return error_.ok() ? part : 0;
    }
    std::memcpy(block() + filled_, bytes, part);
    filled_ += part;
    if (filled_ == file_.blockSize()) writeBlock(block(), std::exchange(filled_, 0));
    return part;
}

void FileStream::writeBlock(char const* bytes, std::size_t count) {
    error_ = file_.file().writeAt(entry_.offset_ + transferred_, bytes, count);
    if (error_.isError()) return;
    entry_.checks_.push_back(XXH3_64bits(bytes, count));
    transferred_ += count;
    entry_.written_ = transferred_;
}

void FileStream::finish() noexcept {
    attempt(Direction::write, [&] {
        if (filled_ > 0) writeBlock(block(), std::exchange(filled_, 0));
    });
}

Error FileStream::read(void* buffer, std::size_t count, std::size_t* done) {
    std::size_t moved = 0;
    attempt(Direction::read, [&] {
        for (std::size_t part = 1; moved < count && part > 0; moved += part)
            part = readSome(static_cast<char*>(buffer) + moved, count - moved);
    });
    if (done) *done = moved;
    return {};
}

// Returns 0 at the end and after a failure.
std::size_t FileStream::readSome(char* bytes, std::size_t count) {
    if (taken_ == filled_) {
        auto const next =
            static_cast<std::size_t>(std::min<std::uint64_t>(file_.blockSize(), entry_.written_ - transferred_));
        if (next == 0) return 0;
        if (count >= next) return readBlock(bytes, next) ? next : 0;
        if (!readBlock(block(), next)) return 0;
        filled_ = next;
        taken_ = 0;
    }
    std::size_t const part = std::min(count, filled_ - taken_);
    std::memcpy(bytes, block() + taken_, part);
    taken_ += part;
    return part;
}

bool FileStream::readBlock(char* bytes, std::size_t count) {
    error_ = file_.file().readAt(entry_.offset_ + transferred_, bytes, count);
    if (error_.ok() && XXH3_64bits(bytes, count) != entry_.checks_[transferred_ / file_.blockSize()])
        error_ = Error(EIO, "the file has been changed by someone else");
    if (error_.ok()) transferred_ += count;
    return error_.ok();
}

char* FileStream::block() {
    if (!block_) block_ = file_.takeBlock();
    return block_.get();
}

}  // namespace urKRCache
