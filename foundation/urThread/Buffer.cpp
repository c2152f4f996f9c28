// Making and joining buffers.
#include "foundation/urThread/Buffer.h"

#include <utility>

namespace urThread {

Buffer::Buffer(void const* bytes, std::size_t size)
    : bytes_(static_cast<char const*>(bytes), static_cast<char const*>(bytes) + size) {}

Buffer::Buffer(std::string_view text) : Buffer(text.data(), text.size()) {}

Buffer::Buffer(ur::vector<char>&& bytes) noexcept : bytes_(std::move(bytes)) {}

Buffer::~Buffer() = default;

ur::Reference<Buffer> mergeBuffers(ur::Reference<Buffer> const& a, ur::Reference<Buffer> const& b) {
    ur::vector<char> bytes;
    bytes.reserve((a ? a->size() : 0) + (b ? b->size() : 0));
    for (Buffer const* part : {a.get(), b.get()})
        if (part) bytes.insert(bytes.end(), part->data(), part->data() + part->size());
    return ur::make<Buffer>(std::move(bytes));
}

}  // namespace urThread
