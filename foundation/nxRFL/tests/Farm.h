// A small native world and its registration, shared by the tests.
#pragma once

#include <functional>
#include <stdexcept>

#include "foundation/nxRFL/ExposeClass.h"
#include "foundation/nxRFL/ExposeFunction.h"

namespace farm {

using urString::CString;

/// Counts its live objects, so that tests detect leaks.
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

// The second base lies after the first: pointers to the two differ.
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

/// The program owns it, unless it is given to a script.
struct Barn : Counted<Barn> {
    ur::vector<ur::Reference<Animal>> animals;
};

/// An object with a destructor in the frame of every call.
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
        .addMethod("quack", &Duck::quack)
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
        .add("first",
             [](ur::vector<Reference<Animal>> const& animals, bool flag) { return std::pair(flag, animals.front()); })
        .add("depthOf", [](Swimmer& swimmer) { return swimmer.depth; })
        .add("nameOf", [](nxRFL::Class* named) { return named ? named->name() : CString("none"); });
}

}  // namespace farm
