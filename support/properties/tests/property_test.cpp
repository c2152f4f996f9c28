// What holds for properties of both kinds, and what listeners may do to them.
#include <functional>
#include <stdexcept>

#include "plst/json.h"
#include "support/properties/predicates.h"
#include "support/properties/tests/Recorder.h"

namespace nxSupport::test {
namespace {

enum class Sides { transacted, untransacted, both };

/// Three members of one joined set, p, q and r in this order, each with a listener.
struct Trio {
    explicit Trio(Sides kind)
        : p(kind == Sides::untransacted ? Property::createUnTxd("p", number(1))
                                        : Property::createTxd(manager, "p", number(1))),
          q(kind == Sides::untransacted ? p->cloneUnTxd("q") : p->cloneTxd(manager, "q")),
          r(kind == Sides::transacted ? p->cloneTxd(manager, "r") : p->cloneUnTxd("r")) {
        for (auto const& property : {p, q, r}) events.follow(property);
    }

    nxTXN::Manager manager;
    PropertyReference p, q, r;
    Recorder events;
};

TEST(Property, HasANameAndAtFirstNoValue) {
    for (auto const& [name, basename] : std::vector<std::pair<char const*, char const*>>{
             {"a.b.c", "c"}, {"abc", "abc"}, {"a.", ""}, {"", ""}, {".x", "x"}}) {
        EXPECT_EQ(Property::createUnTxd(name)->basename(), basename) << name;
    }
    nxTXN::Manager manager;
    for (auto const& property : {Property::createTxd(manager, "p"), Property::createUnTxd("p")}) {
        EXPECT_FALSE(property->cloneTxd(manager)->value() || property->cloneUnTxd()->value());
    }
}

TEST(Property, TakesWhatValidatorsLeaveAndSaysWhetherTheyReplacedTheItem) {
    auto const p = Property::createUnTxd("p");
    auto const q = p->cloneUnTxd("q");
    Item const candidate = number(5);
    Item replacement = candidate;
    Item seen;
    auto const first = q->subscribeValidation([&](auto const&, Item& item) { item = replacement; });
    auto const second = q->subscribeValidation([&](auto const&, Item& item) { seen = item; });
    EXPECT_TRUE(p->setValue(candidate));
    replacement = number(5);  // an equal value in another item
    EXPECT_FALSE(p->setValue(candidate));
    EXPECT_TRUE(seen == replacement && q->value() == replacement);
    Recorder events;
    PropertyReference late;
    auto const third = q->subscribeValidation([&](auto const&, Item&) {
        if (!late) events.follow(late = p->cloneUnTxd("late"));
    });
    p->setValue(candidate);
    EXPECT_EQ(events.take(), "late:start late:perform late:end");
}

TEST(Property, CallsPlainFunctionsForGood) {
    static int calls;
    calls = 0;
    auto const p = Property::createUnTxd("p"), q = p->cloneUnTxd("q");
    q->connect([](ur::Reference<Property const>, PropertyModType) { ++calls; });
    p->setValue(number(1));
    EXPECT_EQ(calls, 3);
}

TEST(Property, ListenersMayDoAnything) {
    struct Case {
        std::string what;
        std::function<void(Trio&)> action;  // run by q's listener at the first start of a change through p
        std::string events;
    };
    PropertyReference other;
    Case const cases[] = {
        {"set the value", [](Trio& set) { set.q->setValue(number(7)); },
         "q:start p:start r:start p:perform r:perform p:end r:end r:start q:perform r:perform q:end r:end"},
        {"add a member", [&](Trio& set) { set.events.follow(other = set.r->cloneUnTxd("new")); },
         "q:start r:start q:perform r:perform new:perform q:end r:end new:end"},
        {"drop a member", [](Trio& set) { set.r = set.q; }, "q:start q:perform q:end"},
        {"drop itself", [](Trio& set) { set.q = set.p; }, "q:start r:start r:perform r:end"},
        {"drop the sender", [](Trio& set) { set.p = set.q; }, "q:start r:start q:perform r:perform q:end r:end"},
        {"join all elsewhere", [&](Trio& set) { set.p->join(other = Property::createUnTxd("k", number(6))); },
         "q:start p:start p:perform p:end q:start q:perform q:end r:start r:perform r:end "
         "q:perform r:perform q:end r:end"},
        {"drop all", [](Trio& set) { set.p = set.q = set.r = Property::createUnTxd("k", number(2)); }, "q:start"},
        {"throw", [](Trio&) { throw std::runtime_error("listener"); }, "q:start"},
    };
    for (Sides const kind : {Sides::transacted, Sides::untransacted, Sides::both}) {
        for (Case const& c : cases) {
            SCOPED_TRACE(c.what + " " + std::to_string(int(kind)));
            Trio set(kind);
            bool acted = false;
            auto const listener = set.q->subscribe([&](auto const&, PropertyModType) {
                if (!std::exchange(acted, true)) c.action(set);
            });
            bool const throws = c.what == "throw";
            if (throws) {
                EXPECT_THROW(set.p->setValue(number(2)), std::runtime_error);
            } else {
                set.p->setValue(number(2));
            }
            EXPECT_EQ(set.events.take(), c.events);
            for (auto const& member : {set.p, set.q, set.r}) EXPECT_EQ(numberOf(*member), throws ? 1 : 2);
            set.p->setValue(number(8));
            EXPECT_EQ(numberOf(*set.r), set.r->name() == "k" && set.p != set.r ? 2 : 8);
            other.reset();
        }
    }
}

TEST(Predicates, TellNumbersAndBoundedNumbers) {
    std::tuple<char const*, bool, bool> const cases[] = {
        {"1.5", true, false}, {"[1.5, 0, 10]", false, true}, {"[1, 2]", false, false}, {"[1, \"s\", 2]", false, false}};
    for (auto const& [text, one, three] : cases) {
        ur::Reference<nxPLST::Item> value;
        EXPECT_TRUE(nxPLST::convertFromJSON(value, text));
        auto const property = Property::createUnTxd("p", value);
        EXPECT_EQ(isDouble(property), one) << text;
        EXPECT_EQ(isBoundedDouble(property), three) << text;
        EXPECT_EQ(isBoundedInt(property), three) << text;
    }
    EXPECT_FALSE(isDouble(Property::createUnTxd("p")) || isDouble(nullptr));
}

}  // namespace
}  // namespace nxSupport::test
