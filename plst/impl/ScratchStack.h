// A stack of values that will move into a container.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <span>
#include <utility>

namespace nxPLST::impl {

/// Grows at its end; the top values are removed together. T must be empty after a move from it.
template <class T>
class ScratchStack {
public:
    ScratchStack() = default;
    ScratchStack(ScratchStack const&) = delete;
    ScratchStack& operator=(ScratchStack const&) = delete;
    ~ScratchStack() { release(); }

    template <class... Arguments>
    T& push(Arguments&&... arguments) {
        if (top_ == end_) [[unlikely]]
            grow();
        T* const place = new (top_) T{std::forward<Arguments>(arguments)...};
        ++top_;
        return *place;
    }
    [[nodiscard]] T& top() noexcept { return top_[-1]; }
    [[nodiscard]] std::size_t size() const noexcept { return static_cast<std::size_t>(top_ - begin_); }
    [[nodiscard]] bool empty() const noexcept { return top_ == begin_; }
    /// The values pushed since the size was `size`.
    [[nodiscard]] std::span<T> above(std::size_t size) noexcept { return {begin_ + size, top_}; }
    void pop() noexcept { std::destroy_at(--top_); }
    /// Drops the values above `size`, which must have been moved from.
    void cut(std::size_t size) noexcept { top_ = begin_ + size; }

private:
    static constexpr std::size_t firstCapacity = 64;

    [[nodiscard]] std::size_t capacity() const noexcept { return static_cast<std::size_t>(end_ - begin_); }

    /// Separate, so that pushing is short enough to be inlined.
    [[gnu::noinline]] void grow() {
        std::size_t const size = this->size();
        std::size_t const larger = std::max(firstCapacity, 2 * capacity());
        T* const place = std::allocator<T>().allocate(larger);
        std::uninitialized_move(begin_, top_, place);
        release();
        begin_ = place;
        top_ = place + size;
        end_ = place + larger;
    }

    void release() noexcept {
        std::destroy(begin_, top_);
        if (begin_) std::allocator<T>().deallocate(begin_, capacity());
    }

    T* begin_ = nullptr;
    T* top_ = nullptr;
    T* end_ = nullptr;
};

}  // namespace nxPLST::impl
