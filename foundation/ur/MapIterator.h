// The iterator of ordered maps.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <type_traits>

namespace ur {

/// Refers to an entry of a `BlockMap`, or to the end. Valid until an entry is inserted or erased.
template <class Block, class Type>
class MapIterator {
public:
    using iterator_category = std::bidirectional_iterator_tag;
    using value_type = std::remove_const_t<Type>;
    using difference_type = std::ptrdiff_t;
    using pointer = Type*;
    using reference = Type&;

    MapIterator() noexcept = default;
    MapIterator(Block* block, std::uint32_t index) noexcept : block_(block), index_(index) {}
    template <class Other>
    requires std::convertible_to<Other*, Type*> MapIterator(MapIterator<Block, Other> const& other)
    noexcept : block_(other.block()), index_(other.index()) {}

    [[nodiscard]] Block* block() const noexcept { return block_; }
    [[nodiscard]] std::uint32_t index() const noexcept { return index_; }

    [[nodiscard]] reference operator*() const noexcept { return (*block_)[index_]; }
    [[nodiscard]] pointer operator->() const noexcept { return &(*block_)[index_]; }
    MapIterator& operator++() noexcept {
        if (++index_ == block_->size && block_->next()) *this = {block_->next(), 0};
        return *this;
    }
    MapIterator& operator--() noexcept {
        if (index_ == 0) *this = {block_->previous(), block_->previous()->size};
        --index_;
        return *this;
    }
    MapIterator operator++(int) noexcept {
        auto const before = *this;
        ++*this;
        return before;
    }
    MapIterator operator--(int) noexcept {
        auto const before = *this;
        --*this;
        return before;
    }
    friend bool operator==(MapIterator const& a, MapIterator const& b) noexcept = default;

private:
    Block* block_ = nullptr;
    std::uint32_t index_ = 0;
};

}  // namespace ur
