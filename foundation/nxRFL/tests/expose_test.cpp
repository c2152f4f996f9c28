// Registered classes and functions: deduced signatures, checked calls, inheritance, callbacks, iterators.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <string>

#include "foundation/nxRFL/ExposeClass.h"
#include "foundation/nxRFL/ExposeFunction.h"

namespace zoo {

using urString::CString;

class Animal : public ur::ReferenceCount {
public:
    explicit Animal(CString name) : name_(std::move(name)) { ++alive; }
    Animal(Animal const&) = delete;
    ~Animal() override { --alive; }

    [[nodiscard]] CString const& name() const { return name_; }
    void setName(CString const& name) { name_ = name; }
    [[nodiscard]] int age() const noexcept { return age_; }
    void grow(int years, float factor) { age_ += static_cast<int>(static_cast<float>(years) * factor); }

    static inline int alive = 0;
    ur::map<CString, int> food;

private:
    CString name_;
    int age_ = 0;
};

struct Swimmer {
    virtual ~Swimmer() = default;
    double depth = 3;
};

// The second base lies behind the first: pointers to the two differ.
class Duck : public Animal, public Swimmer {
public:
    using Animal::Animal;
    [[nodiscard]] CString quack(unsigned times) const {
        CString text;
        while (times-- > 0) text += "quack";
        return text;
    }
};

class SecretDuck : public Duck {
    using Duck::Duck;
};
class SecretAnimal : public Animal {
    using Animal::Animal;
};

}  // namespace zoo

namespace {

using namespace nxRFL;
using ur::Reference;
using urString::CString;
using zoo::Animal;
using zoo::Duck;

struct Exposed : testing::Test {
    Exposed() {
        ExposeClass<Animal>(database, "zoo::Animal")
            .addProperty("name", &Animal::name, &Animal::setName)
            .addProperty("age", &Animal::age)
            .addMethod("grow", &Animal::grow)
            .addMethod("mate", [](Animal& self, Animal* other) { return Reference<Animal>(other ? other : &self); })
            .addMapIterator(
                "food", [](Animal & self) -> auto& { return self.food; });
        ExposeClass<zoo::Swimmer>(database, "zoo::Swimmer").addProperty("depth", [](zoo::Swimmer* self) {
            return self->depth;
        });
        ExposeClass<Duck>(database, "zoo::Duck")
            .addBase<Animal>()
            .addBase<zoo::Swimmer>()
            .addMethod("quack", &Duck::quack);
        ExposeFunction(database, "zoo").add("heaviest", [](ur::vector<Reference<Animal>> const& all, bool young) {
            return std::pair(young, all.empty() ? nullptr : all.front());
        });
    }
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
    template <class... Arguments>
    std::string messageOf(Reference<Function> const& function, Arguments... arguments) {
        try {
            call(function, arguments...);
        } catch (Exception const& error) {
            return error.what();
        }
        return "no error";
    }
    Member const& member(char const* className, char const* name) {
        return *database.getClass(className)->findMember(name);
    }
    Reference<Function> const& function(char const* name) {
        return database.getTable("zoo")->functions.find(name)->function;
    }

    Database database;
    Reference<Duck> duck = ur::make<Duck>("Donald");
};

TEST_F(Exposed, CallsNativeFunctionsWithConvertedArguments) {
    call(member("zoo::Animal", "grow").function, duck, 4, 1.5);
    EXPECT_EQ(Reader(call(member("zoo::Animal", "age").function, duck)).readInt(), 6);
    call(member("zoo::Animal", "name").second, duck, "Daisy");
    EXPECT_EQ(Reader(call(member("zoo::Animal", "name").function, duck)).readText(), "Daisy");
    EXPECT_EQ(Reader(call(member("zoo::Duck", "quack").function, duck, 2)).readText(), "quackquack");

    Stack const results = call(function("heaviest"), ur::vector<Reference<Animal>>{duck}, true);
    Reader reader(results);
    EXPECT_EQ(reader.startArray(), 2U);
    EXPECT_TRUE(reader.readBool());
    EXPECT_EQ(reader.readObjectOrNull(*database.getClass("zoo::Animal")), static_cast<Animal*>(duck.get()));
}

TEST_F(Exposed, NamesFunctionArgumentExpectedAndFound) {
    auto const& grow = member("zoo::Animal", "grow").function;
    auto const& heaviest = function("heaviest");
    EXPECT_EQ(messageOf(grow, duck, 1), "zoo::Animal.grow takes 2 arguments, but got 1");
    EXPECT_EQ(messageOf(grow, duck, 1, 2, 3), "zoo::Animal.grow takes 2 arguments, but got 3");
    EXPECT_EQ(messageOf(grow, 1, 2), "zoo::Animal.grow must be called on an object: object:name(...)");
    EXPECT_EQ(messageOf(grow, duck, 1, true), "zoo::Animal.grow: argument 2 must be number, but is boolean");
    EXPECT_EQ(messageOf(grow, duck, 1.5, 1),
              "zoo::Animal.grow: argument 1 must be a whole number from -2147483648 to 2147483647, but is 1.5");
    EXPECT_EQ(messageOf(grow, 5, 1, 2), "zoo::Animal.grow: the object must be zoo::Animal, but is number");
    EXPECT_EQ(messageOf(member("zoo::Duck", "quack").function, ur::make<Animal>("Rex"), 1),
              "zoo::Duck.quack: the object must be zoo::Duck, but is zoo::Animal");
    EXPECT_EQ(messageOf(heaviest), "zoo.heaviest takes 2 arguments, but got 0");
    EXPECT_EQ(messageOf(heaviest, ur::vector<int>{1}, true),
              "zoo.heaviest: argument 1[1] must be zoo::Animal, but is number");
}

PlainValue plain(double number) { return {PlainValue::Kind::number, false, {.number = number}, {.pointer = nullptr}}; }

TEST_F(Exposed, TakesPlainValuesThatFitAndLeavesOthers) {
    PlainValue const self{
        PlainValue::Kind::object, false, {.objectClass = database.getClass("zoo::Duck")}, {.pointer = duck.get()}};
    PlainResult result;
    auto const takes = [&](char const* name, std::initializer_list<PlainValue> arguments) {
        return member("zoo::Duck", name).function->callPlain(std::span(arguments.begin(), arguments.size()), result);
    };
    EXPECT_TRUE(takes("grow", {self, plain(4), plain(1.5)}));
    EXPECT_EQ(result.kind, PlainValue::Kind::none);
    EXPECT_TRUE(takes("age", {self}));
    EXPECT_EQ(result.number, 6);
    EXPECT_TRUE(takes("quack", {self, plain(2)}));
    EXPECT_EQ(result.text, "quackquack");
    for (double const count : {-1.0, 0.5, 1e10, std::nan("")}) EXPECT_FALSE(takes("quack", {self, plain(count)}));
    EXPECT_FALSE(takes("quack", {self}));
    EXPECT_FALSE(takes("quack", {self, self}));
    EXPECT_FALSE(takes("quack", {plain(1), plain(1)}));
    EXPECT_FALSE(member("zoo::Animal", "mate").function->takesPlainValues());
    database.getClass("zoo::Duck")->setAliveTest([](void const*) { return false; });
    EXPECT_FALSE(takes("quack", {self, plain(1)}));
}

TEST_F(Exposed, FindsTheClassOfAnObjectAndConvertsPointersOnTheWay) {
    auto const resolve = [&](auto* object) {
        using T = std::remove_pointer_t<decltype(object)>;
        return database.resolve(Object(object, impl::defaultTypeUtil<T>()));
    };
    auto const secret = ur::make<zoo::SecretDuck>("James");
    auto const beast = ur::make<zoo::SecretAnimal>("Nessie");

    auto const asSwimmer = resolve(static_cast<zoo::Swimmer*>(duck.get()));
    EXPECT_EQ(asSwimmer.objectClass, database.getClass("zoo::Duck"));
    EXPECT_EQ(asSwimmer.pointer, duck.get());
    EXPECT_EQ(asSwimmer.objectClass->cast(asSwimmer.pointer, ur::TypeInfo::of<zoo::Swimmer>()),
              static_cast<zoo::Swimmer*>(duck.get()));
    EXPECT_EQ(resolve(duck.get()).objectClass, database.getClass("zoo::Duck"));

    EXPECT_EQ(resolve(static_cast<Animal*>(secret.get())).objectClass, database.getClass("zoo::Animal"));
    database.getClass("zoo::Duck")->setHasHiddenSubclasses();
    ExposeClass<int>(database, "late");  // registering anything makes it look again
    EXPECT_EQ(resolve(static_cast<Animal*>(secret.get())).objectClass, database.getClass("zoo::Duck"));
    auto const hidden = resolve(static_cast<zoo::Swimmer*>(secret.get()));
    EXPECT_EQ(hidden.objectClass, database.getClass("zoo::Duck"));
    EXPECT_EQ(hidden.pointer, static_cast<Duck*>(secret.get()));
    EXPECT_EQ(resolve(static_cast<Animal*>(beast.get())).objectClass, database.getClass("zoo::Animal"));
    EXPECT_THROW(resolve(beast.get()), Exception);
}

TEST_F(Exposed, KeepsTheFirstClassAndTheLastMembersOfAName) {
    Class* const first = database.getClass("zoo::Duck");
    Reference<Function> const quack = member("zoo::Duck", "quack").function;
    std::size_t const classes = database.classes().size();
    ExposeClass<Duck>(database, "zoo::Duck").addBase<Animal>().addMethod("quack", [](Duck&) { return 1; });
    EXPECT_EQ(database.classes().size(), classes);
    EXPECT_EQ(database.getClass("zoo::Duck"), first);
    EXPECT_EQ(first->bases().size(), 2U);
    EXPECT_EQ(Reader(call(member("zoo::Duck", "quack").function, duck)).readInt(), 1);
    EXPECT_EQ(Reader(call(quack, duck, 1)).readText(), "quack");
}

TEST_F(Exposed, HandlesHoldObjectsAsTheirRecordSays) {
    Class const& animals = *database.getClass("zoo::Animal");
    {
        Object const handle(duck.get(), animals);
        Object copy = handle;
        EXPECT_EQ(duck->referenceCount(), 3);
        Object const moved = std::move(copy);
        Object const given = Object::give(duck.get(), animals);
        Object const copyOfGiven = given;  // NOLINT(performance-unnecessary-copy-initialization)
        EXPECT_TRUE(given.isGiven());
        EXPECT_FALSE(copyOfGiven.isGiven());
        EXPECT_EQ(duck->referenceCount(), 5);
        EXPECT_EQ(Object(duck.get(), animals, Object::Hold::borrowed).pointer(), duck.get());
    }
    EXPECT_EQ(duck->referenceCount(), 1);

    struct Kept {
        int& gone;
        ~Kept() { ++gone; }
    };
    int gone = 0;
    Kept host{gone};
    { Object const borrowed(&host, impl::ownableType<Kept>); }
    EXPECT_EQ(gone, 0);
    {
        Stack stack;
        Writer(stack).writeObject(Object::give(new Kept{gone}, impl::ownableType<Kept>));
        Stack const copy = stack;
    }
    EXPECT_EQ(gone, 1);
}

// What a script's function would do.
class Scripted : public Function {
public:
    Scripted(Database* database, std::function<void(Reader&, Writer&)> body)
        : Function(database, false), body_(std::move(body)) {}

private:
    void onCall(Stack const& arguments, Stack& results) const override {
        Reader reader(arguments);
        Writer writer(results);
        body_(reader, writer);
    }
    std::function<void(Reader&, Writer&)> body_;
};

TEST_F(Exposed, TurnsFunctionsIntoCallables) {
    std::function<int(Animal&, CString const&)> kept;
    ExposeFunction(database, "zoo").add("keep", [&](std::function<int(Animal&, CString const&)> f) { kept = f; });
    auto const& keep = function("keep");
    CString error;
    database.setErrorHandler([&](Exception const& raised) { error = raised.message(); });
    call(keep, Reference<Function>(ur::make<Scripted>(&database, [&](Reader& reader, Writer& writer) {
             EXPECT_EQ(reader.readObject(ur::TypeInfo::of<Animal>()), static_cast<Animal*>(duck.get()));
             if (reader.readText() == "fail") throw Exception("no such trick");
             writer.writeInt(7);
         })));
    EXPECT_EQ(kept(*duck, "jump"), 7);
    EXPECT_EQ(error, "");
    EXPECT_EQ(kept(*duck, "fail"), 0);
    EXPECT_EQ(error, "no such trick");

    call(keep,
         Reference<Function>(ur::make<Scripted>(&database, [](Reader&, Writer& writer) { writer.writeText("7"); })));
    EXPECT_EQ(kept(*duck, "jump"), 0);
    EXPECT_EQ(error, "item 1 must be number, but is string");
    call(keep, Reference<Function>());
    EXPECT_FALSE(kept);
}

TEST_F(Exposed, WalksMapsThatChangeMeanwhile) {
    duck->food = {{"bread", 1}, {"corn", 2}, {"fish", 3}};
    Stack const begun = call(member("zoo::Animal", "food").function, duck);
    auto& state = *static_cast<IteratorState*>(Reader(begun).readObject(ur::TypeInfo::of<IteratorState>()));
    std::string seen;
    for (; state.valid(); state.advance()) {
        Stack results;
        member("zoo::Animal", "food").second->call(begun, results);
        Reader reader(results);
        reader.startArray();
        std::string const key(reader.readText().view());
        seen += key + std::to_string(reader.readInt()) + " ";
        duck->food.erase(CString(key));
        if (key == "bread") duck->food["duckweed"] = 9;
    }
    EXPECT_EQ(seen, "bread1 corn2 duckweed9 fish3 ");
}

}  // namespace
