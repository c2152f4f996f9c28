// A test fixture: a Lua state with a small native world.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "foundation/nxLC/State.h"
#include "foundation/nxLC/impl/lua.h"
#include "foundation/nxRFL/tests/Farm.h"

namespace farm {

/// Returns its arguments.
class Echo : public nxRFL::Function {
public:
    explicit Echo(nxRFL::Database* database) : Function(database, false) {}

private:
    void onCall(nxRFL::Stack const& arguments, nxRFL::Stack& results) const override {
        Token const token;
        results = arguments;
    }
};

/// A state bound to the farm. At the end no object may be left.
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
    /// Creates an animal that native code owns and scripts find under its name.
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
