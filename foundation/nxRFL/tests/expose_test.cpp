// Tests registered classes and functions: checked calls, inheritance, handles, callbacks, iterators.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>

#include "foundation/nxRFL/tests/Farm.h"

namespace {

using namespace nxRFL;
using farm::Animal;
using farm::Barn;
using farm::Duck;
using farm::Swimmer;
using ur::Reference;
using urString::CString;

struct Exposed : testing::Test {
    Exposed() { farm::expose(database); }
    ~Exposed() override {
        duck.reset();
        EXPECT_EQ(Animal::alive, 0);
    }

    template <class... Arguments>
    Stack call(Reference<Function> const& function, Arguments... arguments) {
        Stack stack;
        Writer writer(stack);
        (write(writer, arguments), ...);
        Stack results;
        function->call(stack, results);
        return results;
    }
    template <class Callable>
    static std::string messageOfCall(Callable const& callable) {
        try {
            callable();
        } catch (Exception const& error) {
            return error.what();
        }
        return "no error";
    }
    template <class... Arguments>
    std::string messageOf(Reference<Function> const& function, Arguments... arguments) {
        return messageOfCall([&] { call(function, arguments...); });
    }
    Member const& member(char const* className, char const* name) {
        return *database.getClass(className)->findMember(name);
    }
    Reference<Function> const& tool(char const* name) { return inTable("farm::tools", name); }

    Reference<Function> const& inTable(char const* table, char const* name) {
        return database.getTable(table)->functions.find(name)->function;
    }

    Database database;
    Reference<Duck> duck = ur::make<Duck>("Donald");
};

TEST_F(Exposed, CallsNativeFunctionsWithConvertedArguments) {
    call(member("farm::Animal", "feed").function, duck, "corn", 4);
    EXPECT_EQ(duck->meals["corn"], 4);
    call(member("farm::Animal", "name").second, duck, "Daisy");
    EXPECT_EQ(Reader(call(member("farm::Animal", "name").function, duck)).readText(), "Daisy");
    EXPECT_EQ(Reader(call(member("farm::Duck", "quack").function, duck, 2)).readText(), "quackquack");
    auto const join = makeFunction(
        database, [](std::string_view a, std::string_view const& b) { return std::string(a) + std::string(b); });
    EXPECT_EQ(join->signature()[1], "string");
    EXPECT_EQ(Reader(call(join, "a text that is not inline", "+")).readText(), "a text that is not inline+");

    Stack const results = call(tool("first"), ur::vector<Reference<Animal>>{duck}, true);
    Reader reader(results);
    EXPECT_EQ(reader.startArray(), 2U);
    EXPECT_TRUE(reader.readBool());
    EXPECT_EQ(reader.readObjectOrNull(*database.getClass("farm::Animal")), static_cast<Animal*>(duck.get()));
}

TEST_F(Exposed, NamesFunctionArgumentExpectedAndFound) {
    auto const& feed = member("farm::Animal", "feed").function;
    auto const& first = tool("first");
    EXPECT_EQ(messageOf(feed, duck, "corn"), "farm::Animal.feed takes 2 arguments, but got 1");
    EXPECT_EQ(messageOf(feed, duck, "corn", 2, 3), "farm::Animal.feed takes 2 arguments, but got 3");
    EXPECT_EQ(messageOf(feed, "corn", 2), "farm::Animal.feed must be called on an object: object:name(...)");
    EXPECT_EQ(messageOf(feed, duck, "corn", true), "farm::Animal.feed: argument 2 must be number, but is boolean");
    EXPECT_EQ(messageOf(feed, duck, "corn", 1.5),
              "farm::Animal.feed: argument 2 must be a whole number from -2147483648 to 2147483647, but is 1.5");
    EXPECT_EQ(messageOf(feed, 5, "corn", 2), "farm::Animal.feed: the object must be farm::Animal, but is number");
    EXPECT_EQ(messageOf(member("farm::Duck", "quack").function, ur::make<Animal>("Rex"), 1),
              "farm::Duck.quack: the object must be farm::Duck, but is farm::Animal");
    EXPECT_EQ(messageOf(member("farm::Duck", "quack").function, duck), "farm::Duck.quack takes 1 argument, but got 0");
    EXPECT_EQ(messageOf(member("farm::Animal", "weight").second, duck, "heavy"),
              "farm::Animal.weight: argument 1 must be number, but is string");
    Stack const ducks = call(member("farm::Duck", "make").function, false);
    Reader unnamed(ducks);  // without a function, so the object's class is unknown
    EXPECT_THROW(unnamed.readObject(ur::TypeInfo::of<Animal>()), Exception);
    EXPECT_NE(unnamed.readObject(ur::TypeInfo::of<Duck>()), nullptr);
    EXPECT_EQ(messageOf(first), "farm::tools.first takes 2 arguments, but got 0");
    EXPECT_EQ(messageOf(first, ur::vector<int>{1}, true),
              "farm::tools.first: argument 1[1] must be farm::Animal, but is number");
}

TEST_F(Exposed, NamesParametersFillsInWhatIsLeftOutAndChoosesByTheNumberOfArguments) {
    struct Pen : ur::ReferenceCount {
        std::string drawn;
        void line(double x, double y, double width, std::string const& colour) {
            drawn +=
                std::to_string(int(x)) + "," + std::to_string(int(y)) + "," + std::to_string(int(width)) + colour + ";";
        }
        void lineTo(ur::vector<double> const& to) { drawn += std::to_string(to.size()) + ";"; }
    };
    nxRFL::ExposeClass<Pen>(database, "studio::Pen")
        .addMethod("line", &Pen::line, {"x", "y", {"width", 1.0}, {"colour", "black"}})
        .addMethod("trace", overloads(&Pen::lineTo, &Pen::line))
        .addMethod("draw", overloads(&Pen::lineTo, &Pen::line, [](Pen& pen) { pen.drawn += "none;"; }));
    auto const pen = ur::make<Pen>();
    auto const& line = member("studio::Pen", "line").function;
    call(line, pen, 1, 2);
    call(line, pen, 1, 2, 3);
    call(line, pen, 1, 2, 3, "red");
    EXPECT_EQ(pen->drawn, "1,2,1black;1,2,3black;1,2,3red;");
    EXPECT_EQ(messageOf(line, pen, 1), "studio::Pen.line takes 2 to 4 arguments, but got 1");
    EXPECT_EQ(messageOf(line, pen, 1, 2, 3, "red", 5), "studio::Pen.line takes 2 to 4 arguments, but got 5");
    EXPECT_EQ(messageOf(line, pen, 1, "2"), "studio::Pen.line: argument 2 (y) must be number, but is string");
    EXPECT_EQ(messageOf(line, 1, 2, 3), "studio::Pen.line: the object must be studio::Pen, but is number");

    pen->drawn.clear();
    auto const& draw = member("studio::Pen", "draw").function;
    call(draw, pen, ur::vector<double>{1, 2});
    call(draw, pen, 1, 2, 3, "red");
    call(draw, pen);
    EXPECT_EQ(pen->drawn, "2;1,2,3red;none;");
    EXPECT_EQ(messageOf(draw, pen, 1, 2), "studio::Pen.draw has no form with 2 arguments");
    EXPECT_EQ(messageOf(draw, pen, 1), "studio::Pen.draw: argument 1 must be array, but is number");
    EXPECT_EQ(messageOf(member("studio::Pen", "trace").function, pen),
              "studio::Pen.trace has no form with 0 arguments");
    EXPECT_EQ(messageOf(draw), "studio::Pen.draw must be called on an object: object:name(...)");
    EXPECT_EQ(draw->signature().size(), 3U) << "of the first form: result, object, points";

    nxRFL::ExposeFunction(database, "studio")
        .add("scale", [](double factor, double by) { return factor * by; }, {"factor", {"by", 10.0}})
        .add("both", overloads([](double a, double b) { return a + b; }, [](double a) { return -a; }));
    EXPECT_EQ(Reader(call(inTable("studio", "scale"), 2)).readDouble(), 20);
    EXPECT_EQ(messageOf(inTable("studio", "scale")), "studio.scale takes 1 to 2 arguments, but got 0");
    EXPECT_EQ(Reader(call(inTable("studio", "both"), 2)).readDouble(), -2);
    EXPECT_EQ(messageOf(inTable("studio", "both")), "studio.both has no form with 0 arguments");
}

TEST_F(Exposed, OmitsOptionalsAtTheEndAndRefusesDefaultsThatDoNotFit) {
    ExposeFunction table(database, "studio");
    auto const count = [](std::string const& name, std::optional<double> const& times, std::optional<bool> loud) {
        return name + std::to_string(times.value_or(1)).substr(0, 1) + (loud.value_or(false) ? "!" : "");
    };
    table.add("count", count).add("named", count, {"name", {"times", 2.0}});
    EXPECT_EQ(Reader(call(inTable("studio", "count"), "a")).readText(), "a1");
    EXPECT_EQ(Reader(call(inTable("studio", "count"), "a", 3, true)).readText(), "a3!");
    EXPECT_EQ(Reader(call(inTable("studio", "named"), "a")).readText(), "a2");
    EXPECT_EQ(messageOf(inTable("studio", "count")), "studio.count takes 1 to 3 arguments, but got 0");
    EXPECT_FALSE(inTable("studio", "count")->mayOmit(0));
    EXPECT_TRUE(inTable("studio", "count")->mayOmit(1));

    auto const two = [](double a, double b) { return a + b; };
    EXPECT_EQ(messageOfCall([&] {
                  table.add("wrong", two, {"a", {"b", "text"}});
              }),
              "studio.wrong: the default of b must be number, but is string");
    EXPECT_EQ(messageOfCall([&] {
                  table.add("middle", two, {{"a", 1.0}, "b"});
              }),
              "studio.middle: the default of a comes before an argument without one");
}

TEST_F(Exposed, GivesEachFormTheNamesAndDefaultsItHasParametersFor) {
    auto const line = nxRFL::overloads([](double x) { return x; }, [](double x, double y) { return x * y; },
                                       [](double x, double y, std::string const&, double) { return x + y; });
    ExposeFunction table(database, "studio");
    table.add("line", line, {std::string("x"), {std::string_view("y"), 10.0}, {"unit", "m"}, {"done", 0.0}});
    auto const& function = inTable("studio", "line");
    EXPECT_EQ(Reader(call(function, 2)).readDouble(), 2) << "not the second form with the default";
    EXPECT_EQ(Reader(call(function, 2, 3)).readDouble(), 6);
    EXPECT_EQ(Reader(call(function, 2, 3, "mm")).readDouble(), 5) << "the third form with its default";
    EXPECT_EQ(messageOf(function, 2, "3"), "studio.line: argument 2 (y) must be number, but is string");
    EXPECT_EQ(messageOf(function), "studio.line has no form with 0 arguments");
    for (auto const& form : function->overloads()) EXPECT_EQ(form->parameters().size(), form->mostArguments());

    EXPECT_EQ(messageOfCall([&] {
                  table.add("most", line, {"a", "b", "c", "d", "e"});
              }),
              "studio.most takes 4 arguments, but has names for 5");
    EXPECT_EQ(messageOfCall([&] {
                  table.add("one", [](double x) { return x; }, {"a", {"b", 1.0}});
              }),
              "studio.one takes 1 argument, but has names for 2");
    EXPECT_FALSE(database.getTable("studio")->functions.find("one"));
    ExposeClass<Duck> ducks(database, "farm::Duck");
    EXPECT_EQ(messageOfCall([&] { ducks.addMethod("swim", [](Duck&) {}, {"far"}); }),
              "farm::Duck.swim takes 0 arguments, but has names for 1");
    EXPECT_EQ(messageOfCall([&] { ducks.addStaticMethod("none", [] {}, {"far"}); }),
              "farm::Duck.none takes 0 arguments, but has names for 1");
}

TEST_F(Exposed, NamesThePlaceOfAWrongResultOrValueAndTheCallbackThatIsNil) {
    ExposeFunction table(database, "studio");
    table.add("each", [](int, std::function<double(double)> const& each) { return each(1); }, {"count", "each"})
        .add("fail", [](int) { throw std::bad_function_call(); })
        .add("maybe", [](std::function<void()> const& done) { return !done; }, {{"done", nullptr}})
        .add("three", [](std::array<int, 3>) {});
    auto const& each = inTable("studio", "each");
    EXPECT_EQ(messageOf(each, 1, Reference<Function>()),
              "studio.each: argument 2 (each) must be function, but is null");
    EXPECT_THROW(call(inTable("studio", "fail"), 1), std::bad_function_call);
    EXPECT_TRUE(Reader(call(inTable("studio", "maybe"))).readBool());
    EXPECT_EQ(messageOf(inTable("studio", "three"), ur::vector<int>{1, 2}),
              "studio.three: argument 1 must be an array of 3, but has 2");

    ThrowingFunction<std::vector<double>()> numbers;
    Stack stack;
    Writer(stack).writeFunction(makeFunction(database, [] { return std::vector<CString>{"a"}; }));
    Reader reader(stack);
    read(reader, numbers);
    EXPECT_EQ(messageOfCall(numbers), "the function: the result[1] must be number, but is string");
    EXPECT_EQ(typeName<ThrowingFunction<double()>>(database), "function");
}

TEST_F(Exposed, GivesErrorsOfScriptsToTheHandlerOrToTheCaller) {
    struct Failing : Function {
        using Function::Function;
        void onCall(Stack const& arguments, Stack& results) const override {
            if (arguments.empty()) throw Exception("nothing given");
            Writer(results).writeItem(arguments);
        }
        bool canRun() const noexcept override { return !closed; }
        bool closed = false;
    };
    auto const failing = ur::make<Failing>(&database, false);
    Stack stack;
    Writer(stack).writeFunction(failing);
    std::function<double()> handled;
    Reader handledReader(stack);
    read(handledReader, handled);
    ThrowingFunction<double()> throwing;
    Reader throwingReader(stack);
    read(throwingReader, throwing);
    ThrowingFunction<double(double)> returning;
    Reader returningReader(stack);
    read(returningReader, returning);
    CString reported;
    database.setErrorHandler([&](Exception const& error) { reported += error.message(); });
    EXPECT_EQ(handled(), 0);
    EXPECT_EQ(reported, "nothing given");
    EXPECT_THROW(static_cast<void>(throwing()), Exception);
    EXPECT_EQ(returning(7), 7);
    failing->closed = true;
    EXPECT_EQ(throwing(), 0);
    EXPECT_EQ(returning(7), 0);
    EXPECT_EQ(reported, "nothing given");
}

PlainValue plain(double number) { return {PlainValue::Kind::number, false, {.number = number}, {.pointer = nullptr}}; }

TEST_F(Exposed, TakesPlainValuesThatFitAndLeavesOthers) {
    PlainValue const self{
        PlainValue::Kind::object, false, {.objectClass = database.getClass("farm::Duck")}, {.pointer = duck.get()}};
    PlainResult result;
    auto const takes = [&](Reference<Function> const& function, std::initializer_list<PlainValue> arguments) {
        return function->callPlain(std::span(arguments.begin(), arguments.size()), result);
    };
    Member const& weight = member("farm::Duck", "weight");
    Reference<Function> const& quack = member("farm::Duck", "quack").function;
    EXPECT_TRUE(takes(weight.second, {self, plain(6.5)}));
    EXPECT_EQ(result.kind, PlainValue::Kind::none);
    EXPECT_TRUE(takes(weight.function, {self}));
    EXPECT_EQ(result.number, 6.5);
    EXPECT_TRUE(takes(quack, {self, plain(2)}));
    EXPECT_EQ(result.text, "quackquack");
    for (double const count : {-1.0, 0.5, 1e10, std::nan("")}) EXPECT_FALSE(takes(quack, {self, plain(count)}));
    EXPECT_FALSE(takes(quack, {self}) || takes(quack, {self, self}) || takes(quack, {plain(1), plain(1)}));
    EXPECT_FALSE(member("farm::Animal", "friend").second->takesPlainValues());
    std::string seen;
    auto const mixed =
        makeFunction(database, [&](bool flag, CString const& text, signed char small, std::string_view shown) {
            seen += text.c_str() + std::to_string(small) + std::string(shown);
            return !flag;
        });
    PlainValue const yes{PlainValue::Kind::boolean, true, {.number = 0}, {.pointer = nullptr}};
    PlainValue const text{PlainValue::Kind::text, false, {.size = 2}, {.bytes = "abc"}};
    EXPECT_TRUE(takes(mixed, {yes, text, plain(-128), text}));
    EXPECT_TRUE(result.kind == PlainValue::Kind::boolean && !result.truth && seen == "ab-128ab");
    EXPECT_FALSE(takes(mixed, {text, text, plain(1), text}) || takes(mixed, {yes, yes, plain(1), text}));
    EXPECT_FALSE(takes(mixed, {yes, text, plain(128), text}) || takes(mixed, {yes, text, yes, text}));
    EXPECT_EQ(seen, "ab-128ab");
    database.getClass("farm::Duck")->setAliveTest([](void const*) { return false; });
    EXPECT_FALSE(takes(quack, {self, plain(1)}));
}

template <class Integer>
void expectExactResults(Database& database, std::initializer_list<Integer> exact,
                        std::initializer_list<Integer> others) {
    Integer next = 0;
    auto const function = makeFunction(database, [&next] { return next; });
    for (Integer const value : exact) {
        next = value;
        PlainResult result;
        Stack results;
        EXPECT_TRUE(function->callPlain({}, result));
        function->call({}, results);
        EXPECT_EQ(result.number, static_cast<long double>(value));
        EXPECT_EQ(Reader(results).readDouble(), result.number);
    }
    for (Integer const value : others) {
        next = value;
        PlainResult result;
        Stack results;
        EXPECT_THROW(static_cast<void>(function->callPlain({}, result)), Exception) << value;
        EXPECT_THROW(function->call({}, results), Exception) << value;
    }
}

TEST_F(Exposed, RefusesIntegersThatNoNumberEquals) {
    constexpr auto two53 = std::int64_t(1) << 53;
    using Limits = std::numeric_limits<std::int64_t>;
    expectExactResults<std::int64_t>(database, {0, -1, two53, -two53, 2 * two53 + 4, Limits::min()},
                                     {two53 + 1, -two53 - 1, 2 * two53 + 2 + 1, Limits::max(), Limits::min() + 1});
    expectExactResults<std::uint64_t>(database, {0, std::uint64_t(two53), std::uint64_t(1) << 63},
                                      {std::uint64_t(two53) + 1, (std::uint64_t(1) << 63) + 1, ~std::uint64_t(0)});
    std::function<double(std::int64_t)> callable;
    Stack callback;
    Writer(callback).writeFunction(makeFunction(database, [](double number) { return number; }));
    Reader reader(callback);
    read(reader, callable);
    CString reported;
    database.setErrorHandler([&](Exception const& error) { reported = error.message(); });
    EXPECT_EQ(callable(two53), two53);
    EXPECT_EQ(callable(two53 + 1), 0);
    EXPECT_EQ(reported, "the integer 9007199254740993 is beyond 2^53 and equals no number of scripts");
}

TEST(Resolving, FindsTheClassOfAnObjectAndConvertsPointersOnTheWay) {
    struct Beast : Animal {
        using Animal::Animal;
    };
    Database database;
    ExposeClass<Animal>(database, "Animal");
    ExposeClass<Swimmer>(database, "Swimmer");
    ExposeClass<Duck>(database, "Duck").addBase<Animal>().addBase<Swimmer>();
    auto const resolve = [&](auto* object) {
        using T = std::remove_pointer_t<decltype(object)>;
        return database.resolve(Object(object, impl::defaultTypeUtil<T>()));
    };
    auto const duck = ur::make<Duck>("Donald");
    auto const secret = ur::make<farm::SecretDuck>("James");
    auto const beast = ur::make<Beast>("Nessie");
    Class* const ducks = database.getClass("Duck");
    Class* const animals = database.getClass("Animal");

    auto const asSwimmer = resolve(static_cast<Swimmer*>(duck.get()));
    EXPECT_TRUE(asSwimmer.objectClass == ducks && asSwimmer.pointer == duck.get());
    EXPECT_EQ(ducks->cast(asSwimmer.pointer, ur::TypeInfo::of<Swimmer>()), static_cast<Swimmer*>(duck.get()));
    EXPECT_EQ(resolve(duck.get()).objectClass, ducks);

    EXPECT_EQ(resolve(static_cast<Animal*>(secret.get())).objectClass, animals);
    ducks->setHasHiddenSubclasses();
    ExposeClass<int>(database, "late");  // any registration clears the cache
    EXPECT_EQ(resolve(static_cast<Animal*>(secret.get())).objectClass, ducks);
    auto const hidden = resolve(static_cast<Swimmer*>(secret.get()));
    EXPECT_TRUE(hidden.objectClass == ducks && hidden.pointer == static_cast<Duck*>(secret.get()));
    EXPECT_EQ(resolve(static_cast<Animal*>(beast.get())).objectClass, animals);
    EXPECT_THROW(resolve(beast.get()), Exception);
    ExposeClass<Beast> beasts(database, "Beast");
    EXPECT_EQ(resolve(static_cast<Animal*>(beast.get())).objectClass, animals);
    beasts.addBase<Animal>();
    EXPECT_EQ(resolve(static_cast<Animal*>(beast.get())).objectClass, database.getClass("Beast"));
}

TEST_F(Exposed, KeepsTheFirstClassAndTheLastMembersOfAName) {
    Class* const first = database.getClass("farm::Duck");
    Reference<Function> const quack = member("farm::Duck", "quack").function;
    std::size_t const classes = database.classes().size();
    ExposeClass<Duck>(database, "farm::Duck").addBase<Animal>().addMethod("quack", [](Duck&) { return 1; });
    EXPECT_EQ(database.classes().size(), classes);
    EXPECT_EQ(database.getClass("farm::Duck"), first);
    EXPECT_EQ(first->bases().size(), 2U);
    EXPECT_EQ(Reader(call(member("farm::Duck", "quack").function, duck)).readInt(), 1);
    EXPECT_EQ(Reader(call(quack, duck, 1)).readText(), "quack");
}

TEST_F(Exposed, RefusesObjectsThatHaveGoneThoseOfDerivedClassesToo) {
    struct Goose : Duck {
        using Duck::Duck;
    };
    static Animal const* gone = nullptr;
    database.getClass("farm::Animal")->setAliveTest([](void const* object) { return object != gone; });
    ExposeClass<Goose>(database, "farm::Goose").addBase<Swimmer>();
    EXPECT_TRUE(database.getClass("farm::Goose")->isAlive(duck.get())) << "no base has a test";
    ExposeClass<Goose>(database, "farm::Goose").addBase<Animal>();
    struct Gosling : Goose {
        using Goose::Goose;
    };
    ExposeClass<Gosling>(database, "farm::Gosling").addBase<Goose>();
    auto const goose = ur::make<Gosling>("Martin");
    Object const handle(goose.get(), *database.getClass("farm::Gosling"));
    auto const& weight = member("farm::Animal", "weight").function;
    EXPECT_EQ(messageOf(weight, handle), "no error");
    gone = goose.get();
    EXPECT_EQ(messageOf(weight, handle), "farm::Animal.weight: the object must not be a farm::Gosling that has gone");
}

TEST_F(Exposed, HandlesHoldObjectsAsTheirRecordSays) {
    Class const& animals = *database.getClass("farm::Animal");
    {
        Object const handle(duck.get(), animals);
        Object copy = handle;
        EXPECT_EQ(duck->referenceCount(), 3);
        Object const moved = std::move(copy);
        Object const given = Object::give(duck.get(), animals);
        Object const copyOfGiven = given;  // NOLINT(performance-unnecessary-copy-initialization)
        EXPECT_TRUE(given.isGiven() && !copyOfGiven.isGiven());
        EXPECT_EQ(duck->referenceCount(), 5);
        EXPECT_EQ(Object(duck.get(), animals, Object::Hold::borrowed).pointer(), duck.get());
    }
    EXPECT_EQ(duck->referenceCount(), 1);

    Barn host;
    { Object const borrowed(&host, impl::ownableType<Barn>); }
    EXPECT_EQ(Barn::alive, 1);
    {
        Stack stack;
        Writer(stack).writeObject(Object::give(new Barn, impl::ownableType<Barn>));
        Stack const copy = stack;
    }
    EXPECT_EQ(Barn::alive, 1);
}

TEST_F(Exposed, TurnsFunctionsIntoCallables) {
    std::function<int(Animal&, CString const&)> kept;
    ExposeFunction(database, "farm::tools").add("keep", [&](std::function<int(Animal&, CString const&)> f) {
        kept = std::move(f);
    });
    CString error;
    database.setErrorHandler([&](Exception const& raised) { error = raised.message(); });
    auto const keep = [&](auto function) { call(tool("keep"), Reference<Function>(makeFunction(database, function))); };
    keep([&](Animal* self, CString const& trick) {
        EXPECT_EQ(self, duck.get());
        if (trick == "fail") throw Exception("no such trick");
        return 7;
    });
    EXPECT_EQ(kept(*duck, "jump"), 7);
    EXPECT_EQ(error, "");
    EXPECT_EQ(kept(*duck, "fail"), 0);
    EXPECT_EQ(error, "no such trick");
    keep([](Animal*, CString const&) { return CString("7"); });
    EXPECT_EQ(kept(*duck, "jump"), 0);
    EXPECT_EQ(error, "the function: the result must be number, but is string");
    call(tool("keep"), Reference<Function>());
    EXPECT_FALSE(kept);
}

TEST_F(Exposed, WalksMapsThatChangeMeanwhile) {
    duck->meals = {{"bread", 1}, {"corn", 2}, {"fish", 3}};
    Stack const begun = call(member("farm::Animal", "meals").function, duck);
    auto& state = *static_cast<IteratorState*>(Reader(begun).readObject(ur::TypeInfo::of<IteratorState>()));
    std::string seen;
    for (; state.valid(); state.advance()) {
        Stack results;
        member("farm::Animal", "meals").second->call(begun, results);
        Reader reader(results);
        reader.startArray();
        std::string const key(reader.readText().view());
        seen += key + std::to_string(reader.readInt()) + " ";
        duck->meals.erase(CString(key));
        if (key == "bread") duck->meals["duckweed"] = 9;
    }
    EXPECT_EQ(seen, "bread1 corn2 duckweed9 fish3 ");
}

}  // namespace
