// An ordered sequence of object references.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "foundation/nxTXN/RefCountedObject.h"
#include "foundation/ur/Reference.h"

namespace nxTXN::impl {

/// A long sequence with fast insertion in the middle: pieces of limited length, none of them empty.
class ObjectSequence {
public:
    using Element = ur::Reference<RefCountedObject>;

    explicit ObjectSequence(std::size_t mostInPiece) noexcept : mostInPiece_(mostInPiece) {}

    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    /// The elements from `index` to the end of their piece. Requires: `index` is below the size.
    [[nodiscard]] std::span<Element const> run(std::size_t index) const noexcept;
    /// Changes nothing when it throws. Requires: `index` is not beyond the end.
    void insert(std::size_t index, Element element);
    /// Requires: `index` is below the size.
    [[nodiscard]] Element take(std::size_t index) noexcept;
    void clear() noexcept;

private:
    using Piece = std::vector<Element>;
    struct Place {
        std::size_t piece;
        std::size_t offset;
    };

    /// The insertion place for that index: the end of a piece rather than the start of the next.
    [[nodiscard]] Place placeOf(std::size_t index) const noexcept;
    [[nodiscard]] Piece emptyPiece() const;
    void split(std::size_t piece);
    void joinWithNext(std::size_t piece) noexcept;

    std::size_t mostInPiece_;
    std::vector<Piece> pieces_;  ///< each has room for the most elements, but a single one only for its own
    std::size_t size_ = 0;
};

}  // namespace nxTXN::impl
