// Implements the memory stream.
#include "foundation/urOS/MemoryIOStream.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace urOS {
namespace {

urUtil::Error notOpen(char const* what) { return urUtil::Error::fromSystem(EBADF, what); }

}  // namespace

urUtil::Error MemoryIOStream::open(OpenMode mode) {
    if (includes(mode, openNew)) {
        blocks_.clear();
        size_ = 0;
    }
    mode_ = mode;
    position_ = includes(mode, openAppend) ? size_ : 0;
    return {};
}

urUtil::Error MemoryIOStream::close() {
    mode_ = {};
    return {};
}

urUtil::Error MemoryIOStream::read(void* buffer, std::size_t count, std::size_t* done) {
    std::size_t const wanted = includes(mode_, openRead) ? std::min(count, size_ - position_) : 0;
    for (std::size_t copied = 0; copied < wanted;) {
        std::string_view const rest = block(position_ / blockSize_).substr(position_ % blockSize_);
        std::size_t const piece = std::min(wanted - copied, rest.size());
        std::memcpy(static_cast<char*>(buffer) + copied, rest.data(), piece);
        copied += piece;
        position_ += piece;
    }
    if (done) *done = wanted;
    return includes(mode_, openRead) ? urUtil::Error() : notOpen("memory stream not open for reading");
}

urUtil::Error MemoryIOStream::write(void const* buffer, std::size_t count, std::size_t* done) {
    std::size_t const wanted = includes(mode_, openWrite) ? count : 0;
    for (std::size_t copied = 0; copied < wanted;) {
        std::size_t const index = position_ / blockSize_;
        if (index == blocks_.size()) blocks_.push_back(std::make_unique_for_overwrite<char[]>(blockSize_));
        std::size_t const offset = position_ % blockSize_;
        std::size_t const piece = std::min(wanted - copied, blockSize_ - offset);
        std::memcpy(blocks_[index].get() + offset, static_cast<char const*>(buffer) + copied, piece);
        copied += piece;
        position_ += piece;
        size_ = std::max(size_, position_);
    }
    if (done) *done = wanted;
    return includes(mode_, openWrite) ? urUtil::Error() : notOpen("memory stream not open for writing");
}

urUtil::Error MemoryIOStream::seek(std::size_t position) {
    if (position > size_) return urUtil::Error::fromSystem(EINVAL, "memory stream position");
    position_ = position;
    return {};
}

std::string_view MemoryIOStream::block(std::size_t index) const noexcept {
    return {blocks_[index].get(), std::min(blockSize_, size_ - index * blockSize_)};
}

urString::CString MemoryIOStream::contents() const {
    urString::CString text;
    text.reserve(size_);
    for (std::size_t i = 0; i < blockCount(); ++i) text.append(block(i));
    return text;
}

}  // namespace urOS
