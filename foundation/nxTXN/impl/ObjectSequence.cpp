// Splits full pieces, and joins two neighbours that together fill less than half of one.
#include "foundation/nxTXN/impl/ObjectSequence.h"

#include <iterator>
#include <utility>

namespace nxTXN::impl {
namespace {

auto at(auto& piece, std::size_t offset) { return piece.begin() + static_cast<std::ptrdiff_t>(offset); }

}  // namespace

std::span<ObjectSequence::Element const> ObjectSequence::run(std::size_t index) const noexcept {
    Place const place = placeOf(index + 1);
    return std::span(pieces_[place.piece]).subspan(place.offset - 1);
}

ObjectSequence::Place ObjectSequence::placeOf(std::size_t index) const noexcept {
    std::size_t piece = 0;
    while (index > pieces_[piece].size()) index -= pieces_[piece++].size();
    return {piece, index};
}

ObjectSequence::Piece ObjectSequence::emptyPiece() const {
    Piece piece;
    piece.reserve(mostInPiece_);
    return piece;
}

void ObjectSequence::insert(std::size_t index, Element element) {
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

void ObjectSequence::split(std::size_t piece) {
    Piece& added = *pieces_.insert(at(pieces_, piece + 1), emptyPiece());
    Piece& full = pieces_[piece];
    auto const half = at(full, full.size() / 2);
    added.assign(std::move_iterator(half), std::move_iterator(full.end()));
    full.erase(half, full.end());
}

ObjectSequence::Element ObjectSequence::take(std::size_t index) noexcept {
    Place const place = placeOf(index + 1);
    Piece& piece = pieces_[place.piece];
    Element taken = std::move(piece[place.offset - 1]);
    piece.erase(at(piece, place.offset - 1));
    --size_;
    if (place.piece > 0) joinWithNext(place.piece - 1);
    if (place.piece < pieces_.size()) joinWithNext(place.piece);
    if (size_ == 0) pieces_.clear();
    return taken;
}

void ObjectSequence::joinWithNext(std::size_t piece) noexcept {
    if (piece + 1 == pieces_.size()) return;
    Piece& next = pieces_[piece + 1];
    if (pieces_[piece].size() + next.size() > mostInPiece_ / 2) return;
    std::move(next.begin(), next.end(), std::back_inserter(pieces_[piece]));
    pieces_.erase(at(pieces_, piece + 1));
}

void ObjectSequence::clear() noexcept {
    std::vector<Piece> const gone = std::exchange(pieces_, {});  // destructors may look at this sequence
    size_ = 0;
}

}  // namespace nxTXN::impl
