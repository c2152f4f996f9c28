// What every property does, of either kind.
#include <functional>
#include <stdexcept>

#include "support/properties/predicates.h"
#include "support/properties/tests/Recorder.h"

namespace nxSupport::test {
namespace {

enum class Kind { transacted, untransacted, mixed };
constexpr Kind kinds[] = {Kind::transacted, Kind::untransacted, Kind::mixed};

/// Three members of one joined set, p, q and r in this order, each listened to.
struct Trio {
    nxTXN::Manager manager;
    PropertyReference p;
    PropertyReference q;
    PropertyReference r;
    Recorder heard;

    explicit Trio(Kind kind) {
        p = kind == Kind::untransacted ? Property::createUnTxd("p", number(1))
                                       : Property::createTxd(manager, "p", number(1));
        q = kind == Kind::untransacted ? p->cloneUnTxd("q") : p->cloneTxd(manager, "q");
        r = kind == Kind::transacted ? p->cloneTxd(manager, "r") : p->cloneUnTxd("r");
        for (auto const& property : {p, q, r}) heard.follow(property);
    }
};

TEST(Property, NamesEndBehindTheLastPoint) {
    for (auto const& [name, basename] : std::vector<std::pair<char const*, char const*>>{
             {"a.b.c", "c"}, {"abc", "abc"}, {"a.", ""}, {"", ""}, {".x", "x"}}) {
        EXPECT_EQ(Property::createUnTxd(name)->basename(), basename) << name;
    }
}

TEST(Property, TellsTheOtherMembersInOrderAndNeverTheSender) {
    for (Kind const kind : kinds) {
        Trio set(kind);
        set.heard.values = true;
        EXPECT_TRUE(set.p->setValue(number(2)));
        EXPECT_EQ(set.heard.take(), "q:start=1 r:start=1 q:perform=2 r:perform=2 q:end=2 r:end=2");
        EXPECT_TRUE(set.r->setValue(number(3)));
        EXPECT_EQ(set.heard.take(), "p:start=2 q:start=2 p:perform=3 q:perform=3 p:end=3 q:end=3");
        set.q.reset();
        set.p->setValue(number(4));
        EXPECT_EQ(set.heard.take(), "r:start=3 r:perform=4 r:end=4");
    }
    Recorder heard;
    auto const alone = Property::createUnTxd("alone");
    heard.follow(alone);
    EXPECT_EQ(alone->value(), nullptr);
    EXPECT_TRUE(alone->setValue(number(4)));
    EXPECT_EQ(heard.take() + std::to_string(int(numberOf(*alone))), "4");
}

TEST(Property, TellsOneStageWhenSetWithIt) {
    std::vector<std::pair<int, std::string>> const cases = {
        {ModifyStart, "q:start r:start"},
        {ModifyPerform, "q:perform r:perform"},
        {ModifyEnd, "q:end r:end"},
        {9, "q:9 r:9"},
        {ModifyAll, "q:start r:start q:perform r:perform q:end r:end"}};
    for (Kind const kind : kinds) {
        Trio set(kind);
        for (auto const& [type, text] : cases) {
            EXPECT_TRUE(set.p->setValue(number(type + 10), static_cast<PropertyModType>(type)));
            EXPECT_EQ(set.heard.take(), text);
            EXPECT_EQ(numberOf(*set.r), type + 10);
        }
    }
}

TEST(Property, RunsTheValidatorsOfTheFirstMemberThatHasAny) {
    for (Kind const kind : kinds) {
        Trio set(kind);
        std::string ran;
        Item replacement;
        auto const validator = [&](std::string const& name) {
            return [&ran, &replacement, name](ur::Reference<Property const> const& member, Item& candidate) {
                EXPECT_EQ(member->name().view(), name.substr(0, 1));
                ran += name;
                if (replacement) candidate = replacement;
            };
        };
        auto const r1 = set.r->subscribeValidation(validator("r"));
        EXPECT_TRUE(set.p->setValue(number(2)));
        EXPECT_EQ(std::exchange(ran, {}), "r");
        auto const q1 = set.q->subscribeValidation(validator("q1"));
        auto const q2 = set.q->subscribeValidation(validator("q2"));
        Item const candidate = number(5);
        replacement = candidate;
        EXPECT_TRUE(set.r->setValue(candidate));
        EXPECT_EQ(std::exchange(ran, {}), "q1q2");
        replacement = number(5);
        EXPECT_FALSE(set.p->setValue(candidate));
        EXPECT_EQ(set.r->value(), replacement);
        EXPECT_FALSE(set.p->setValue(candidate, ModifyPerform));
        replacement = nullptr;
        ran.clear();
        EXPECT_TRUE(set.p->setValue(candidate, ModifyAll));
        EXPECT_EQ(ran, "q1q2q1q2");
    }
}

TEST(Property, ConnectsPlainFunctionsForGood) {
    static int told;
    told = 0;
    auto const p = Property::createUnTxd("p");
    auto const q = p->cloneUnTxd("q");
    q->connect([](ur::Reference<Property const> property, PropertyModType) {
        EXPECT_EQ(property->name(), "q");
        ++told;
    });
    q->connect(nullptr);
    p->connectValidation([](ur::Reference<Property const>, Item& candidate) { candidate = number(3); });
    EXPECT_FALSE(p->setValue(number(1)));
    EXPECT_EQ(told, 3);
    EXPECT_EQ(numberOf(*q), 3);
}

TEST(Property, SubscriptionsEndWithTheirHandlesAndCanBeBlocked) {
    int told = 0;
    auto const p = Property::createUnTxd("p");
    auto const q = p->cloneUnTxd("q");
    {
        auto const handle = q->subscribe([&told](auto const&, PropertyModType) { ++told; });
        p->setValue(number(1));
        EXPECT_EQ(told, 3);
        urRTB::ScopedBlock const block(handle.get());
        p->setValue(number(2));
    }
    p->setValue(number(3));
    EXPECT_EQ(told, 3);
}

TEST(Property, ListenersMayDoAnything) {
    struct Case {
        std::string what;
        std::function<void(Trio&)> action;  // by q's listener, at the first start of a change through p
        std::string heard;
    };
    PropertyReference other;
    Case const cases[] = {
        {"set the value", [](Trio& set) { set.q->setValue(number(7)); },
         "q:start p:start r:start p:perform r:perform p:end r:end r:start q:perform r:perform q:end r:end"},
        {"add a member", [&](Trio& set) { set.heard.follow(other = set.r->cloneUnTxd("new")); },
         "q:start r:start q:perform r:perform q:end r:end"},
        {"drop a member", [](Trio& set) { set.r = set.q; }, "q:start q:perform q:end"},
        {"drop itself", [](Trio& set) { set.q = set.p; }, "q:start r:start r:perform r:end"},
        {"drop the sender", [](Trio& set) { set.p = set.q; }, "q:start r:start q:perform r:perform q:end r:end"},
        {"join all elsewhere", [&](Trio& set) { set.p->join(other = Property::createUnTxd("k", number(6))); },
         "q:start p:start p:perform p:end q:start q:perform q:end r:start r:perform r:end "
         "q:perform r:perform q:end r:end"},
        {"drop all", [](Trio& set) { set.p = set.q = set.r = Property::createUnTxd("k", number(2)); }, "q:start"},
    };
    for (Kind const kind : kinds) {
        for (Case const& c : cases) {
            SCOPED_TRACE(c.what + " " + std::to_string(int(kind)));
            Trio set(kind);
            bool acted = false;
            auto const listener = set.q->subscribe([&](auto const&, PropertyModType) {
                if (!std::exchange(acted, true)) c.action(set);
            });
            set.p->setValue(number(2));
            EXPECT_EQ(set.heard.take(), c.heard);
            for (auto const& member : {set.p, set.q, set.r}) EXPECT_EQ(numberOf(*member), 2);
            set.p->setValue(number(8));
            EXPECT_EQ(numberOf(*set.r), set.r->name() == "k" && set.p != set.r ? 2 : 8);
            other.reset();
        }
    }
}

TEST(Property, AnExceptionLeavesTheChangeWhereItWas) {
    for (Kind const kind : kinds) {
        Trio set(kind);
        int calls = 0;
        auto const listener = set.q->subscribe([&](auto const&, PropertyModType type) {
            if (type == calls++) throw std::runtime_error("listener");
        });
        EXPECT_THROW(set.p->setValue(number(2)), std::runtime_error);
        EXPECT_EQ(set.heard.take(), "q:start");
        EXPECT_EQ(numberOf(*set.p), 1);
        calls = 1;
        EXPECT_NO_THROW(set.p->setValue(number(3), ModifyStart));
        calls = ModifyPerform;
        EXPECT_THROW(set.p->setValue(number(4), ModifyPerform), std::runtime_error);
        EXPECT_EQ(numberOf(*set.r), 4);
    }
}

TEST(Predicates, TellNumbersAndBoundedNumbers) {
    auto const array = [](std::initializer_list<Item> items) {
        auto result = ur::make<nxPLST::Array>();
        for (Item const& item : items) result->insert(item->clone());
        return Item(result);
    };
    Item const text = ur::make<nxPLST::String>("s");
    struct Case {
        Item value;
        bool isDouble;
        bool isBounded;
    };
    for (auto const& [value, one, three] :
         {Case{nullptr, false, false}, Case{number(1.5), true, false}, Case{text, false, false},
          Case{array({number(1.5), number(0), number(10)}), false, true},
          Case{array({number(1), number(2)}), false, false}, Case{array({number(1), text, number(2)}), false, false}}) {
        auto const property = Property::createUnTxd("p", value);
        EXPECT_EQ(isDouble(property), one);
        EXPECT_EQ(isBoundedDouble(property), three);
        EXPECT_EQ(isBoundedInt(property), three);
    }
    EXPECT_FALSE(isDouble(nullptr));
}

}  // namespace
}  // namespace nxSupport::test
