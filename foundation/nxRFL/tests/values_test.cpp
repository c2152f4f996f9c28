// Tests conversions of ordinary C++ types: texts, containers, enumerations, structures, data members.
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "foundation/nxRFL/ExposeClass.h"
#include "foundation/nxRFL/tests/roundTrip.h"
#include "foundation/ur/tests/Chair.h"

namespace nxRFL::test {

using ur::test::Chair;
using ur::test::Wood;

namespace {

template <class T>
std::string complaintOf(Stack const& stack) {
    try {
        readBack<T>(stack);
    } catch (Exception const& error) {
        return error.what();
    }
    return "none";
}

template <class T>
void expectSame(T const& value, Kind kind) {
    Stack const stack = written(value);
    EXPECT_EQ(Reader(stack).kind(), kind);
    EXPECT_TRUE(readBack<T>(stack) == value);
}

TEST(OrdinaryValues, CrossBothWays) {
    expectSame(std::string("a\0b", 3), Kind::text);
    expectSame(std::vector<std::string>{"a", "b"}, Kind::array);
    expectSame(std::array{1, 2, 3}, Kind::array);
    expectSame(urString::IString("gr\xC3\xBC\xC3\x9F", urString::Encoding::utf8), Kind::text);
    expectSame(std::filesystem::path("/gr\xC3\xBC\xC3\x9F"), Kind::text);
    expectSame(std::map<std::string, std::vector<double>>{{"k", {0.5}}, {"l", {}}}, Kind::dictionary);
    expectSame(std::map<urString::CString, bool>{{"k", true}}, Kind::dictionary);
    expectSame(std::optional<int>(3), Kind::number);
    expectSame(std::optional<int>(), Kind::null);
    expectSame(Wood::ash, Kind::text);
    expectSame(Chair{"high", Wood::ash, 2.5, {1, 2}}, Kind::dictionary);
    expectSame(std::vector{Chair(), Chair{"low", Wood::oak, {}, {}}}, Kind::array);
    EXPECT_EQ(readBack<std::string>(written(std::string_view("view"))), "view");
}

TEST(OrdinaryValues, AreRefusedWithTheReason) {
    EXPECT_EQ(complaintOf<Wood>(written("beech")), "item 1 must be \"oak\" or \"ash\", but is \"beech\"");
    EXPECT_EQ((complaintOf<std::array<int, 2>>(written(std::vector{1, 2, 3}))),
              "item 1 must be an array of 2, but has 3");
    using Numbers = std::map<std::string, double>;
    EXPECT_EQ(complaintOf<Chair>(written(Numbers{{"legs", 4}})),
              "item 1 is no structure: \"legs\" is one key too many");
    EXPECT_EQ(complaintOf<Chair>(written(Numbers{{"nmae", 4}})),
              "item 1 is no structure: \"nmae\" is one key too many; do you mean name?");
    EXPECT_EQ(readBack(written(Numbers{{"height", 4}}), Chair{"kept", Wood::ash, 1, {}}),
              (Chair{"kept", Wood::ash, 4, {}}));
    EXPECT_NE(complaintOf<Chair>(written(Numbers{{"name", 4}})).find("string"), std::string::npos);
}

struct Place : ur::ReferenceCount {
    double x = 1;
    Chair chair;
    int const floor = 3;
    std::string describe(std::string const& prefix, std::optional<int> const& count) const {
        return prefix + chair.name + std::to_string(count.value_or(-1));
    }
};

TEST(OrdinaryValues, WorkAsDataMembersAndArguments) {
    Database database;
    Class& places = ExposeClass<Place>(database, "test::Place")
                        .addProperty("x", &Place::x)
                        .addProperty("chair", &Place::chair)
                        .addProperty("floor", &Place::floor)
                        .addMethod("describe", &Place::describe)
                        .getClass();
    auto const place = ur::make<Place>();
    auto const call = [&](ur::Reference<Function> const& function, auto const&... arguments) {
        Stack stack, results;
        Writer writer(stack);
        write(writer, place);
        (write(writer, arguments), ...);
        function->call(stack, results);
        return results;
    };
    call(places.findMember("x")->second, 2.5);
    EXPECT_EQ(place->x, 2.5);
    EXPECT_EQ(readBack<double>(call(places.findMember("x")->function)), 2.5);
    call(places.findMember("chair")->second, Chair{"new", Wood::ash, {}, {}});
    EXPECT_EQ(readBack<Chair>(call(places.findMember("chair")->function)), place->chair);
    EXPECT_EQ(place->chair.wood, Wood::ash);
    EXPECT_FALSE(places.findMember("floor")->second);
    auto const& describe = places.findMember("describe")->function;
    EXPECT_EQ(readBack<std::string>(call(describe, "a ", 2)), "a new2");
    EXPECT_EQ(readBack<std::string>(call(describe, "a ", std::optional<int>())), "a new-1");
}

}  // namespace
}  // namespace nxRFL::test
