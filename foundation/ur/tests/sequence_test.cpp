// Tests sequences against a vector.
#include "foundation/ur/Sequence.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>

namespace ur::test {
namespace {

TEST(Sequences, AreLikeVectorsAndKeepTheirPiecesFullEnough) {
    constexpr std::size_t most = 8;
    Sequence<std::shared_ptr<int>> sequence(most);
    std::vector<std::shared_ptr<int>> vector;
    std::mt19937 random(1);
    for (int i = 0; i < 3000; ++i) {
        bool const grows = i % 1000 < 600;
        if (random() % 3 == 0 ? grows : !grows && sequence.size() > 0) {
            if (sequence.empty()) continue;
            std::size_t const index = random() % sequence.size();
            ASSERT_EQ(sequence.take(index), vector[index]);
            vector.erase(vector.begin() + static_cast<std::ptrdiff_t>(index));
        } else {
            std::size_t const index = random() % (sequence.size() + 1);
            auto const element = std::make_shared<int>(i);
            sequence.insert(index, element);
            vector.insert(vector.begin() + static_cast<std::ptrdiff_t>(index), element);
        }
        ASSERT_EQ(sequence.size(), vector.size());
        std::size_t previous = most;
        for (std::size_t at = 0; at < sequence.size();) {
            auto const run = sequence.run(at);
            ASSERT_LE(run.size(), most);
            ASSERT_GT(previous + run.size(), most / 2) << "two of them go into one";
            for (auto const& element : run) ASSERT_EQ(element, vector[at++]);
            previous = run.size();
        }
        auto next = vector.begin();
        sequence.forEach([&](auto const& element) { EXPECT_EQ(element, *next++); });
        EXPECT_EQ(next, vector.end());
    }
    EXPECT_GT(vector.size(), 4 * most) << "several pieces";
    sequence.clear();
    EXPECT_TRUE(sequence.empty());
    for (auto const& element : vector) EXPECT_EQ(element.use_count(), 1);
}

}  // namespace
}  // namespace ur::test
