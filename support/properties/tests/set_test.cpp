// Property sets, their values as dictionaries, and typed properties.
#include "support/properties/Prop.h"

#include "foundation/ur/tests/Chair.h"
#include "support/properties/savedValues.h"
#include "support/properties/tests/Recorder.h"

namespace nxSupport::test {
namespace {

TEST(PropertySet, HoldsOnePropertyUnderEachNameAndMergesWhatIsMissing) {
    auto const set = ur::make<PropertySet>();
    auto const other = ur::make<PropertySet>();
    auto const mine = Property::createUnTxd("b");
    for (auto const& property : {Property::createUnTxd("b"), mine, PropertyReference()}) set->insert(property);
    for (char const* const name : {"c", "b", "a"}) other->insert(Property::createUnTxd(name));
    for (auto const& from : {other, set, ur::Reference<PropertySet>()}) set->merge(from);
    std::string names;
    for (auto const& [name, property] : set->getMap()) names += std::string(name);
    EXPECT_EQ(names, "abc");
    EXPECT_TRUE(set->find("b") == mine && other->find("b") != mine && !set->find("B"));
    set->find("c")->setValue(number(3));
    EXPECT_EQ(numberOf(*other->find("c")), 3);
}

TEST(SavedValues, ComeBackWithAReportOfWhatDidNotFit) {
    auto const set = ur::make<PropertySet>();
    for (char const* const name : {"absent", "new", "number", "point", "strict"}) {
        set->insert(Property::createUnTxd(name));
    }
    for (char const* const name : {"number", "strict"}) set->find(name)->setValue(number(1));
    Prop<urLinear::Point>(set->find("point")).set({1, 2, 3});

    auto const saved = saveValues(*set);
    set->find("number")->setValue(number(5));
    for (char const* const name : {"unknown", "new"}) saved->insert(name, ur::make<nxPLST::Double>(7));
    asArray(saved->find("point"))->insert(ur::make<nxPLST::Double>(4));
    auto const handle =
        set->find("strict")->subscribeValidation([](auto const&, Item& candidate) { candidate = number(9); });
    LoadReport const report = loadValues(*set, *saved);
    EXPECT_THAT(report.missing, testing::ElementsAre("absent"));
    EXPECT_THAT(report.extra, testing::ElementsAre("unknown"));
    EXPECT_THAT(report.wrongShape, testing::ElementsAre("point"));
    EXPECT_THAT(report.corrected, testing::ElementsAre("strict"));
    EXPECT_EQ(numberOf(*set->find("number")), 1);
    asDouble(saved->find("new"))->set(8);  // does not change the property, which holds a copy
    EXPECT_EQ(numberOf(*set->find("new")), 7);
    EXPECT_FALSE(report.complete());
}

/// Sets a value, reads it back, and checks that values of other shapes do not count as set.
template <class T>
void expectTyped(T const& value, T const& fallback) {
    auto property = Prop<T>::createUnTxd("p", value);
    EXPECT_TRUE(property.isSet() && property.get(fallback) == value);
    EXPECT_TRUE(property.set(fallback) && property.get() == fallback);
    property.pty()->setValue(ur::make<nxPLST::Dictionary>());
    EXPECT_TRUE(!property.isSet() && property.get(value) == value);
}

TEST(Prop, ReadsAndWritesEveryTypeThatHasAnItemShape) {
    expectTyped(true, false);
    expectTyped(1, 2);
    expectTyped(1.5F, 2.5F);
    expectTyped(0.1, 0.2);
    expectTyped(urString::CString("a"), urString::CString("b"));
    expectTyped(urString::IString("a"), urString::IString("b"));
    expectTyped(std::string("a"), std::string("b"));
    expectTyped(std::vector{1.5, 2.5}, std::vector{0.5});
    expectTyped(std::array{1, 2}, std::array{3, 4});
    expectTyped(urLinear::Point2(1, 2), urLinear::Point2(3, 4));
    expectTyped(urLinear::Point(1, 2, 3), urLinear::Point(4, 5, 6));
    expectTyped(urLinear::Vector(1, 2, 3), urLinear::Vector(4, 5, 6));
    expectTyped(urLinear::Normal(1, 0, 0), urLinear::Normal(0, 1, 0));
    expectTyped(urLinear::Quaternion(1, 2, 3, 4), urLinear::Quaternion());
    expectTyped(urLinear::AffineMatrix(), urLinear::AffineMatrix(2.0));
    expectTyped(urUtil::Color(0.5F, 0.25F, 0), urUtil::Color(1, 1, 1));
    expectTyped(urUtil::Color8(1, 2, 3), urUtil::Color8(4, 5, 6));
    expectTyped(BoundedDouble(1, 0, 2), BoundedDouble(2, 0, 2));
    expectTyped(BoundedInt(1, 0, 2), BoundedInt(2, 0, 2));
}

TEST(Prop, RefusesWhatHasNoItemFormAndTakesTextsOfOtherTypes) {
    auto part = Prop<std::vector<std::uint64_t>>::createUnTxd("part", {1, 2});
    EXPECT_FALSE(part.set({1, 0x9E3779B97F4A7C15ULL}) || part.set({0x9E3779B97F4A7C15ULL}, ModifyPerform));
    EXPECT_EQ(part.get(), (std::vector<std::uint64_t>{1, 2}));
    auto maybe = Prop<std::optional<ur::test::Wood>>::createUnTxd("maybe", ur::test::Wood::ash);
    EXPECT_FALSE(maybe.set(ur::test::Wood::unnamed));
    EXPECT_EQ(maybe.get(), ur::test::Wood::ash);
    EXPECT_TRUE(maybe.set(std::nullopt));
    auto text = Prop<std::string>::createUnTxd("text", std::string_view("desk"));
    EXPECT_TRUE(text.get() == "desk" && text.set(std::string_view("chair")));
    text.pty()->setValue(number(1));
    EXPECT_EQ(text.get(std::string_view("none")), "none");
}

TEST(Prop, TellsTypedListenersAndHoldsNothingAtFirst) {
    Prop<double> none;
    EXPECT_FALSE(none.isSet() || none.set(1) || none.set(1, ModifyPerform) || none.pty());
    EXPECT_EQ(none.get(3), 3);

    nxTXN::Manager manager;
    auto slider = Prop<BoundedDouble>::createTxd(manager, "slider", BoundedDouble(1, 0, 10));
    Prop<BoundedDouble> label(slider.pty()->cloneUnTxd("label"));
    std::string calls;
    auto const handle = label.subscribe([&calls](BoundedDouble const& value, PropertyModType type) {
        calls += std::to_string(int(value.value())) + "/" + std::to_string(type) + " ";
    });
    slider.set(BoundedDouble(4, 0, 10));
    slider.pty()->setValue(number(1));
    EXPECT_EQ(calls, "1/0 4/1 4/2 4/0 ");
    EXPECT_TRUE(label.set(BoundedDouble(7, 0, 10)));
    std::size_t const steps = manager.undoCount();
    calls.clear();
    edit(manager, [&] { EXPECT_TRUE(slider.set(BoundedDouble(7, 0, 10))); });
    EXPECT_EQ(calls + std::to_string(manager.undoCount() - steps), "0") << "an equal value is no change";
    edit(manager, [&] { slider.pty()->setValue(slider.pty()->value()); });
    EXPECT_EQ(calls, "7/0 7/1 7/2 ") << "of the item itself it is one" << manager.undoCount();
    slider.allocateUnTxd("other");
    EXPECT_FALSE(slider.isSet());
}

}  // namespace
}  // namespace nxSupport::test
