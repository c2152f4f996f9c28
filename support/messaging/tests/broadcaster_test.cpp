// The order of delivery, and what subscribers may do during a broadcast.
#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include "support/messaging/PreClearResourcesMsg.h"
#include "support/messaging/subscribeFirstTime.h"
#include "support/messaging/tests/Host.h"

namespace {

using namespace nxSupport;

struct Note : Broadcaster::Message {
    std::string text;
};

Broadcaster::Priority at(int unit, int module) { return {UnitID(unit), ModuleID(module)}; }
void noteA(Note& note) { note.text += "A"; }
void noteB(Note& note) { note.text += "B"; }
void noteC(Note& note) { note.text += "C"; }

std::string sent(Broadcaster& broadcaster) {
    Note note;
    broadcaster.broadcast(note);
    return note.text;
}

TEST(Priority, IsOrderedByUnitThenModuleAsSignedNumbers) {
    Broadcaster::Priority const ascending[] = {at(-1, 0), at(0, -2), at(0, 0), at(1, 0), at(1, 7), at(2, 0), {}};
    for (auto const& a : ascending) {
        for (auto const& b : ascending) {
            EXPECT_EQ(compare(a, b), (&a > &b) - (&a < &b));
            EXPECT_TRUE((a < b) == (&a < &b) && (a > b) == (&a > &b));
            EXPECT_TRUE((a == b) == (&a == &b) && (a != b) == (&a != &b));
        }
    }
    EXPECT_EQ(Broadcaster::Priority(), at(18, 3));
}

TEST(Broadcaster, CallsLowestPriorityFirstAndEqualOnesAsTheyConnected) {
    Broadcaster broadcaster;
    EXPECT_EQ(sent(broadcaster), "");
    broadcaster.connect(at(2, 5), noteB);
    auto const connection = broadcaster.connect(at(2, 5), noteC);
    broadcaster.connect(at(1, 9), noteA);
    EXPECT_EQ(sent(broadcaster), "ABC");
    connection.block();
    {
        auto const owned = broadcaster.subscribe<Note>({}, [](Note& note) { note.text += "!"; });
        EXPECT_EQ(sent(broadcaster), "AB!");
        auto const listeners = broadcaster.listeners();
        ASSERT_EQ(listeners.size(), 4U);
        EXPECT_TRUE(listeners[2].blocked && !listeners[3].blocked);
        EXPECT_TRUE(listeners[3].priority == at(18, 3) && listeners[3].message == ur::TypeInfo::of<Note>());
        EXPECT_NE(listeners[3].name.find("CallsLowestPriorityFirst"), urString::CString::npos);
    }
    EXPECT_EQ(sent(broadcaster), "AB");
}

TEST(Broadcaster, LetsSubscribersThrowConnectAndBroadcast) {
    Broadcaster broadcaster;
    bool fails = true;
    auto const reentrant = broadcaster.subscribe<Note>(at(5, 0), [&](Note&) {
        if (fails) throw std::runtime_error("no");
        broadcaster.connect(at(4, 0), noteA);  // an earlier priority: not called by this broadcast
        broadcaster.connect(at(6, 0), noteC);  // called by this broadcast, as is the next one
        broadcaster.connect(at(5, 0), noteB);
        PreClearResourcesMsg other;
        broadcaster.broadcast(other);  // the first use of this message class
    });
    EXPECT_THROW(sent(broadcaster), std::runtime_error);
    fails = false;
    EXPECT_EQ(sent(broadcaster), "BC");
}

TEST(Broadcaster, MayBeDestroyedByASubscriber) {
    std::optional<Broadcaster> broadcaster(std::in_place);
    bool flag = false, inner = false;
    broadcaster->addFirstTimeFlag(&flag);
    broadcaster->addFirstTimeFlag(&flag);
    auto const last = broadcaster->subscribe<PreClearResourcesMsg>({}, [&](auto&) { broadcaster.reset(); });
    auto const outer = broadcaster->subscribe<Note>({}, [&](Note&) {
        PreClearResourcesMsg message;
        broadcaster->broadcast(message);
        inner = true;
    });
    broadcaster->connect(at(19, 0), noteA);
    EXPECT_EQ(sent(*broadcaster), "");
    EXPECT_TRUE(inner && flag && !last.get().connected());
}

TEST(Broadcaster, MayBeUsedByWhatGoesWithIt) {
    std::string events;
    {
        Broadcaster broadcaster;
        std::shared_ptr<void> parting(&events, [&](void*) {
            events = sent(broadcaster);
            broadcaster.connect(at(9, 0), noteC);
        });
        broadcaster.connect({}, noteA);
        broadcaster.sigFor<Note>(at(1, 0)).addCallback(
            [held = std::move(parting)](Note& note) { note.text += held ? "!" : "?"; });
    }
    EXPECT_EQ(events, "A");
}

TEST(SubscribeFirstTime, SubscribesOnceToEachBroadcasterThatThereIs) {
    Host host;
    std::optional<Broadcaster> broadcaster;
    host.provide = [&](CallInfo& info) {
        if (broadcaster) info.add(&*broadcaster);
    };
    bool firstTime = true;
    auto const subscribe = [&] {
        Context const context(&host, Context::NoTxn);
        return subscribeFirstTime(firstTime, noteA);
    };
    EXPECT_FALSE(subscribe());
    for (int round = 0; round < 2; ++round) {
        broadcaster.emplace();
        EXPECT_TRUE(subscribe());
        EXPECT_FALSE(subscribe());
        EXPECT_EQ(sent(*broadcaster), "A");
        EXPECT_EQ(broadcaster->listeners().at(0).priority, at(0, 0));
        broadcaster.reset();
    }
}

}  // namespace
