// Repeats an operation and lets a later allocation fail each time.
#pragma once

#include <gtest/gtest.h>

#include <exception>
#include <string>

#include "tests/faults/Allocations.h"

namespace faults {

/// Returns false if the operation returned false or threw.
template <class Story>
bool succeeds(Story& story) {
    try {
        return story.act();
    } catch (std::exception const&) {
        return false;
    }
}

/// Lets the allocation number `failing` fail. Returns whether there was one.
template <class Story>
bool playFailing(std::size_t failing, Allocations::Then then, std::string const& before, std::string const& after) {
    Story story;
    bool succeeded = false;
    bool failed = false;
    {
        Allocations const allocations(failing, then);
        succeeded = succeeds(story);
        failed = allocations.failed();
    }
    std::string const state = story.state();
    EXPECT_TRUE(state == after || (state == before && !succeeded)) << state;
    if (state == before) {
        EXPECT_TRUE(succeeds(story)) << "with memory again";
    }
    EXPECT_EQ(story.state(), after);
    return failed;
}

/// Fails every allocation of `Story::act` in turn, in a new story each time: first only that one, then also all that
/// follow until `act` ends. Nothing may crash or leak, the `state` must be the one before or after, and a second call
/// must succeed. `act` returns false if it failed.
template <class Story>
void survives() {
    std::string before;
    std::string after;
    {
        Story story;  // also allocates what is never freed
        before = story.state();
        ASSERT_TRUE(story.act());
        after = story.state();
    }
    for (auto const then : {Allocations::Then::recover, Allocations::Then::fail}) {
        std::size_t failing = 0;
        for (bool failed = true; failed && !testing::Test::HasFailure(); ++failing) {
            playFailing<Story>(failing, then, before, after);  // allocates what a failure never frees
            auto const live = Allocations::live();
            failed = playFailing<Story>(failing, then, before, after);
            EXPECT_EQ(Allocations::live(), live) << "left behind or taken twice";
            if (testing::Test::HasFailure()) ADD_FAILURE() << "when allocation " << failing << " fails";
        }
        EXPECT_GT(failing, 1U) << "nothing was allocated";
    }
}

}  // namespace faults
