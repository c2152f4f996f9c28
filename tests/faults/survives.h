// Playing a story over and over, with one more allocation succeeding each time.
#pragma once

#include <gtest/gtest.h>

#include <exception>
#include <string>

#include "tests/faults/Allocations.h"

namespace faults {

/// False when it said so or threw.
template <class Story>
bool succeeds(Story& story) {
    try {
        return story.act();
    } catch (std::exception const&) {
        return false;
    }
}

/// Whether an allocation was left to fail: the one with number `failing`.
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

/// Fails every allocation of `Story::act` in turn, in a new story each time, first alone and then with all that follow
/// until `act` ends: nothing crashes or leaks, the `state` is the one of before or of after, and a second try succeeds.
/// `act` is false when it has failed.
template <class Story>
void survives() {
    std::string before;
    std::string after;
    {
        Story story;  // also makes what stays for good
        before = story.state();
        ASSERT_TRUE(story.act());
        after = story.state();
    }
    for (auto const then : {Allocations::Then::recover, Allocations::Then::fail}) {
        std::size_t failing = 0;
        for (bool failed = true; failed && !testing::Test::HasFailure(); ++failing) {
            playFailing<Story>(failing, then, before, after);  // makes what stays for good of a failure
            auto const live = Allocations::live();
            failed = playFailing<Story>(failing, then, before, after);
            EXPECT_EQ(Allocations::live(), live) << "left behind or taken twice";
            if (testing::Test::HasFailure()) ADD_FAILURE() << "when allocation " << failing << " fails";
        }
        EXPECT_GT(failing, 1U) << "nothing was allocated";
    }
}

}  // namespace faults
