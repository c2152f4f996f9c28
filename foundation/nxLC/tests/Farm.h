// A small native world and a state that knows it, for the tests.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

#include "foundation/nxLC/State.h"
#include "foundation/nxLC/impl/lua.h"
#include "foundation/nxRFL/ExposeClass.h"
#include "foundation/nxRFL/ExposeFunction.h"

namespace farm {

using urString::CString;

/// Counts what is alive of it, as everything here that a test can leak.
template <class T>
struct Counted {
    Counted() { ++alive; }
    Counted(Counted const&) { ++alive; }
    Counted& operator=(Counted const&) = default;
    ~Counted() { --alive; }
    static inline int alive = 0;
};

class Animal : public ur::ReferenceCount, Counted<Animal> {
public:
    using Counted<Animal>::alive;

    explicit Animal(CString const& given) : name(given) {}

    [[nodiscard]] double weight() const noexcept { return weight_; }
    void setWeight(double weight) { weight_ = weight; }
    [[nodiscard]] CString const& getName() const noexcept { return name; }
    void rename(CString const& newName) { name = newName; }
    void feed(CString const& food, int amount) { meals[food] += amount; }

    CString name;
    ur::map<CString, int> meals;
    ur::Reference<Animal> friendly;
    std::function<CString(Animal&, CString const&)> onCall;

private:
    double weight_ = 1;
};

struct Swimmer {
    virtual ~Swimmer() = default;
    int depth = 3;
};

class Duck : public Animal, public Swimmer {
    using Animal::Animal;
};
class SecretDuck : public Duck {
    using Duck::Duck;
};

/// Owned by the program, unless given to a script.
struct Barn : Counted<Barn> {
    ur::vector<ur::Reference<Animal>> animals;
};

/// Something to destroy in the frame of every call.
struct Token : Counted<Token> {};

inline void expose(nxRFL::Database& database) {
    using ur::Reference;
    nxRFL::ExposeClass<Animal>(database, "farm::Animal")
        .setHasHiddenSubclasses()
        .addProperty("weight", &Animal::weight, &Animal::setWeight)
        .addProperty("name", &Animal::getName, &Animal::rename)
        .addProperty(
            "friend", [](Animal& self) { return self.friendly; },
            [](Animal& self, Reference<Animal> const& other) { self.friendly = other; })
        .addProperty("legs", [](Animal&) { return 4; })
        .addMethod("feed", &Animal::feed)
        .addMethod("setOnCall", [](Animal& self, decltype(Animal::onCall) const& function) { self.onCall = function; })
        .addMethod("call",
                   [](Animal& self, CString const& text) {
                       Token const token;
                       return self.onCall ? self.onCall(self, text) : CString("nothing");
                   })
        .addMethod("fail",
                   [](Animal& self, CString const& how) {
                       Token const token;
                       if (how == "exception") throw nxRFL::Exception(self.name + " is tired");
                       if (how == "standard") throw std::runtime_error("out of order");
                       if (how == "long") throw nxRFL::Exception(CString(2000, 'x'));
                       throw 5;
                   })
        .addStaticMethod("make", [](CString const& name) { return ur::make<Animal>(name); })
        .addMapIterator(
            "meals", [](Animal & self) -> auto& { return self.meals; });
    nxRFL::ExposeClass<Swimmer>(database, "farm::Swimmer").addProperty("depth", [](Swimmer& self) {
        return self.depth;
    });
    nxRFL::ExposeClass<Duck>(database, "farm::Duck")
        .addBase<Animal>()
        .addBase<Swimmer>()
        .setHasHiddenSubclasses()
        .addStaticMethod(
            "make",
            [](bool secret) { return secret ? Reference<Duck>(new SecretDuck("James")) : ur::make<Duck>("Donald"); })
        .addMethod("asSwimmer", [](Duck& self) -> Swimmer* { return &self; });
    nxRFL::ExposeClass<Barn>(database, "farm::Barn", nxRFL::impl::ownableType<Barn>)
        .addMethod("add", [](Barn& self, Reference<Animal> const& animal) { self.animals.push_back(animal); })
        .addMethod("count", [](Barn& self) { return self.animals.size(); });
    nxRFL::ExposeFunction(database, "farm::tools")
        .add("apply",
             [](Reference<nxRFL::Function> const& function, ur::vector<double> const& values) {
                 Token const token;
                 nxRFL::Stack arguments;
                 nxRFL::Stack results;
                 nxRFL::Writer writer(arguments);
                 for (double const value : values) writer.writeDouble(value);
                 function->call(arguments, results);
                 return results.size();
             })
        .add("depthOf", [](Swimmer& swimmer) { return swimmer.depth; })
        .add("nameOf", [](nxRFL::Class* named) { return named ? named->name() : CString("none"); });
}

/// Hands back what it is given.
class Echo : public nxRFL::Function {
public:
    explicit Echo(nxRFL::Database* database) : Function(database, false) {}

private:
    void onCall(nxRFL::Stack const& arguments, nxRFL::Stack& results) const override {
        Token const token;
        results = arguments;
    }
};

/// A state on the farm. Everything must be gone at the end.
struct Farm : testing::Test {
    explicit Farm(nxLC::Library library = nxLC::Library::everything) {
        expose(database);
        nxRFL::ExposeFunction(database, "farm::tools").add("echo", ur::make<Echo>(&database));
        database.setErrorHandler([this](nxRFL::Exception const& error) { reported += error.message() + ";"; });
        state = std::make_unique<nxLC::State>(database, library);
    }
    ~Farm() override {
        state.reset();
        EXPECT_EQ(Animal::alive, 0);
        EXPECT_EQ(Barn::alive, 0);
        EXPECT_EQ(Token::alive, 0);
    }

    /// The error of the script, or "ok".
    std::string run(std::string const& script) {
        auto const error = state->run(script, "=test");
        return error ? std::string(error->message().view()) : "ok";
    }
    void succeed(std::string const& script) { EXPECT_EQ(run(script), "ok") << script; }
    /// What the script returns.
    double number(std::string const& script) {
        nxRFL::Stack results;
        auto const error = state->run(script, "=test", {}, results);
        if (error) ADD_FAILURE() << error->message();
        return nxRFL::Reader(results).readDouble();
    }
    /// A global variable of the script.
    template <class T>
    void give(char const* global, T const& value) {
        nxRFL::Stack arguments;
        nxRFL::Writer writer(arguments);
        writer.writeText(global);
        nxRFL::write(writer, value);
        nxRFL::Stack results;
        EXPECT_FALSE(state->run("local name, value = ... _G[name] = value", "=give", arguments, results));
    }
    /// An animal of the program that scripts find under its name.
    ur::Reference<Animal> giveAnimal(char const* name) {
        auto animal = ur::make<Animal>(name);
        give(name, animal);
        return animal;
    }

    CString reported;
    nxRFL::Database database;
    std::unique_ptr<nxLC::State> state;
};

}  // namespace farm
