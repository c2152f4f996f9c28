// The memory of one run of yajl.
#pragma once

#include <yajl/yajl_common.h>

#include <cstddef>

namespace nxPLST::impl {

/// Hands memory to yajl and takes all of it back when it goes, whatever became of yajl.
///
/// Yajl does not look whether it gets what it asks for. So a lack of memory throws, through yajl, whose objects must
/// not be used any more then: not even to free them.
class YajlMemory {
public:
    YajlMemory() noexcept { ring_.next = ring_.previous = &ring_; }
    YajlMemory(YajlMemory const&) = delete;
    YajlMemory& operator=(YajlMemory const&) = delete;
    ~YajlMemory();

    /// For `yajl_alloc`, which copies them; its parser must not outlive this.
    [[nodiscard]] yajl_alloc_funcs* functions() noexcept { return &functions_; }

private:
    /// Lies before each block.
    struct alignas(std::max_align_t) Link {
        Link* next;
        Link* previous;
    };

    static void* allocate(void* memory, std::size_t bytes);
    static void* reallocate(void* memory, void* block, std::size_t bytes);
    static void deallocate(void* memory, void* block) noexcept;
    void enter(Link* link) noexcept;

    yajl_alloc_funcs functions_ = {&allocate, &reallocate, &deallocate, this};
    Link ring_;
};

}  // namespace nxPLST::impl
