// Compares the memory of records and steps with plain lists, using tiny blocks.
#include <gtest/gtest.h>

#include <cstring>
#include <deque>
#include <random>

#include "foundation/nxTXN/impl/RecordArena.h"
#include "foundation/nxTXN/impl/Steps.h"

namespace nxTXN::impl {
namespace {

/// Starts with its own size and a number.
struct Piece {
    RecordArena::Place place;
    std::uint32_t bytes;
    std::uint32_t number;
};

struct ArenaPlay {
    RecordArena arena{Sizes{.smallestBlock = 64, .largestBlock = 256}};
    std::deque<Piece> pieces;
    std::uint32_t numbers = 0;

    void add(std::uint32_t bytes) {
        arena.makeRoom(bytes);
        Piece piece{arena.top(), bytes, ++numbers};
        std::byte* const memory = arena.allocate(bytes);
        std::memset(memory, static_cast<int>(piece.number), bytes);
        std::memcpy(memory, &piece.bytes, sizeof piece.bytes);
        if (arena.at(piece.place) != memory) piece.place.block = ~0U;  // `check` reports it
        pieces.push_back(piece);
    }
    void truncate(std::size_t count) {
        if (count == 0) return;
        RecordArena::Place const place = pieces[pieces.size() - count].place;
        pieces.resize(pieces.size() - count);
        arena.truncate(place);
    }
    void trim(std::size_t count) {
        pieces.erase(pieces.begin(), pieces.begin() + static_cast<std::ptrdiff_t>(count));
        arena.trim(pieces.empty() ? arena.top() : pieces.front().place);
    }
    /// Walks from the bottom to the top.
    void check() {
        RecordArena::Place place = arena.bottom();
        std::size_t bytes = 0;
        for (Piece const& piece : pieces) {
            std::byte const* const memory = arena.at(place);
            ASSERT_TRUE(memory);
            ASSERT_EQ(place, piece.place);
            std::uint32_t size = 0;
            std::memcpy(&size, memory, sizeof size);
            ASSERT_EQ(size, piece.bytes);
            for (std::uint32_t i = sizeof size; i < size; ++i) ASSERT_EQ(memory[i], std::byte(piece.number));
            place.offset += size;
            bytes += size;
        }
        ASSERT_FALSE(arena.at(place));
        ASSERT_LE(arena.heldBytes(), 4 * bytes + 4096);
    }
};

TEST(RecordArena, KeepsPiecesWholeWhileTheyComeAndGoAtBothEnds) {
    std::mt19937 random(std::random_device{}());
    ArenaPlay play;
    for (int step = 0; step < 20000; ++step) {
        bool const grows = step / 500 % 2 == 0;
        std::size_t const some = play.pieces.empty() ? 0 : random() % std::min<std::size_t>(play.pieces.size() + 1, 5);
        switch (random() % (grows ? 6 : 3)) {
            case 0: play.truncate(some); break;
            case 1: play.trim(some); break;
            default: play.add(8 * (1 + static_cast<std::uint32_t>(random() % (random() % 20 == 0 ? 50 : 6))));
        }
        ASSERT_NO_FATAL_FAILURE(play.check()) << step;
    }
}

TEST(RecordArena, SlidesPiecesDownOverThoseThatGo) {
    for (unsigned pattern = 0; pattern < 256; ++pattern) {
        ArenaPlay play;
        for (std::uint32_t i = 0; i < 8; ++i) play.add(i >= 6 ? 200 : 8 * (1 + i * 5 % 7));
        RecordArena::Place to = play.pieces.front().place;
        std::deque<Piece> kept;
        for (std::size_t i = 0; i < 8; ++i) {
            if ((pattern >> i & 1U) == 0) continue;
            Piece piece = play.pieces[i];
            play.arena.slide(to, play.arena.at(piece.place), piece.bytes);
            RecordArena::Place const end = to;
            piece.place = {end.block, end.offset - piece.bytes};
            kept.push_back(piece);
        }
        play.arena.truncate(to);
        play.pieces = kept;
        ASSERT_NO_FATAL_FAILURE(play.check()) << pattern;
    }
}

TEST(Steps, AreARowThatGrowsAtOneEndAndGoesAtBoth) {
    std::mt19937 random(std::random_device{}());
    Steps steps(Sizes{.stepBlockBits = 1});
    std::deque<std::uint32_t> expected;
    std::uint32_t number = 0;
    for (int step = 0; step < 20000; ++step) {
        auto const kind = random() % (step / 100 % 2 == 0 ? 5 : 3);
        if (kind > 1 || expected.empty()) {
            Step added;
            added.records = ++number;
            steps.push(std::move(added));
            expected.push_back(number);
        } else if (kind == 0) {
            ASSERT_EQ(steps.popBack().records, expected.back());
            expected.pop_back();
        } else {
            ASSERT_EQ(steps.popFront().records, expected.front());
            expected.pop_front();
        }
        ASSERT_EQ(steps.size(), expected.size());
        ASSERT_EQ(steps.empty(), expected.empty());
        for (std::size_t i = 0; i < expected.size(); ++i) ASSERT_EQ(steps[i].records, expected[i]);
    }
}

}  // namespace
}  // namespace nxTXN::impl
