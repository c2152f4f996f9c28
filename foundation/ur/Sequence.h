// A long sequence that changes in the middle.
#pragma once

#include <cstddef>
#include <iterator>
#include <span>
#include <utility>
#include <vector>

namespace ur {

/// Inserts and takes at any place in a small part of the time that a vector needs: holds its elements in pieces of
/// limited length, of which two neighbours never fit into half of one. Requires: elements move without throwing.
template <class T>
class Sequence {
public:
    Sequence() noexcept = default;
    /// Uses pieces of at most `mostInPiece` elements, for tests.
    explicit Sequence(std::size_t mostInPiece) noexcept : mostInPiece_(mostInPiece) {}

    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    [[nodiscard]] bool empty() const noexcept { return size_ == 0; }
    /// The elements from `index` to the end of their piece. Requires: `index` is below the size.
    [[nodiscard]] std::span<T const> run(std::size_t index) const noexcept {
        Place const place = placeOf(index + 1);
        return std::span(pieces_[place.piece]).subspan(place.offset - 1);
    }
    template <class Visit>
    void forEach(Visit visit) const {
        for (Piece const& piece : pieces_) {
            for (T const& element : piece) visit(element);
        }
    }

    /// Changes nothing when it throws. Requires: `index` is not beyond the end.
    void insert(std::size_t index, T element);
    /// Requires: `index` is below the size.
    T take(std::size_t index) noexcept;
    void clear() noexcept {
        std::vector<Piece> const gone = std::exchange(pieces_, {});  // destructors may look at this sequence
        size_ = 0;
    }

private:
    using Piece = std::vector<T>;
    struct Place {
        std::size_t piece;
        std::size_t offset;
    };

    [[nodiscard]] static auto at(auto& vector, std::size_t offset) noexcept {
        return vector.begin() + static_cast<std::ptrdiff_t>(offset);
    }
    /// The insertion place for that index: the end of a piece rather than the start of the next.
    [[nodiscard]] Place placeOf(std::size_t index) const noexcept {
        if (index > size_ / 2) {
            std::size_t piece = pieces_.size() - 1;
            std::size_t start = size_ - pieces_[piece].size();
            while (index <= start && piece > 0) start -= pieces_[--piece].size();
            return {piece, index - start};
        }
        std::size_t piece = 0;
        while (index > pieces_[piece].size()) index -= pieces_[piece++].size();
        return {piece, index};
    }
    void split(std::size_t piece);
    void joinWithNext(std::size_t piece) noexcept;

    std::size_t mostInPiece_ = 128;
    std::vector<Piece> pieces_;  ///< not empty; each has room for the most elements, but a single one only for its own
    std::size_t size_ = 0;
};

template <class T>
void Sequence<T>::insert(std::size_t index, T element) {
    if (pieces_.empty()) pieces_.emplace_back();
    Place place = placeOf(index);
    if (pieces_[place.piece].size() == mostInPiece_) {
        split(place.piece);
        place = placeOf(index);
    }
    Piece& piece = pieces_[place.piece];
    piece.insert(at(piece, place.offset), std::move(element));
    ++size_;
}

template <class T>
void Sequence<T>::split(std::size_t piece) {
    Piece added;
    added.reserve(mostInPiece_);
    pieces_.insert(at(pieces_, piece + 1), std::move(added));
    Piece& full = pieces_[piece];
    auto const half = at(full, full.size() / 2);
    pieces_[piece + 1].assign(std::move_iterator(half), std::move_iterator(full.end()));
    full.erase(half, full.end());
}

template <class T>
T Sequence<T>::take(std::size_t index) noexcept {
    Place const place = placeOf(index + 1);
    Piece& piece = pieces_[place.piece];
    T taken = std::move(piece[place.offset - 1]);
    piece.erase(at(piece, place.offset - 1));
    --size_;
    if (place.piece > 0) joinWithNext(place.piece - 1);
    if (place.piece < pieces_.size()) joinWithNext(place.piece);
    if (size_ == 0) pieces_.clear();
    return taken;
}

template <class T>
void Sequence<T>::joinWithNext(std::size_t piece) noexcept {
    if (piece + 1 == pieces_.size()) return;
    Piece& next = pieces_[piece + 1];
    if (pieces_[piece].size() + next.size() > mostInPiece_ / 2) return;
    std::move(next.begin(), next.end(), std::back_inserter(pieces_[piece]));
    pieces_.erase(at(pieces_, piece + 1));
}

}  // namespace ur
