// A minimal host for scripts in tests.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "foundation/nxLC/State.h"
#include "foundation/nxRFL/ExposeClass.h"
#include "foundation/urOS/AppOutput.h"
#include "net/tests/Transfers.h"
#include "script/initialize.h"
#include "support/messaging/Broadcaster.h"
#include "support/messaging/DataSink.h"
#include "support/messaging/InitializeLuaMsg.h"
#include "support/messaging/InitializeReflectionMsg.h"
#include "support/messaging/tests/Host.h"
#include "support/services/Registry.h"

namespace nxSupport {

/// Keeps all data that it receives.
class TextSink : public DataSink {
public:
    std::string text;

private:
    void onData(ur::Reference<urThread::Buffer> data) override { text.append(data->data(), data->size()); }
    void onClose() override { text += completed() ? "!" : "?"; }
};

/// Runs the start-up and gives scripts a table `host`.
class ScriptHost {
public:
    ScriptHost() {
        domain.provide = [this](CallInfo& callInfo) { callInfo.add(broadcaster.get()), callInfo.add<Domain>(&domain); };
        database.setErrorHandler([](nxRFL::Exception const& error) {
            urOS::AppOutput::getInstance().print("callback: %s\n", error.what());
        });
        Context const context(&domain, Context::AppOnly);
        EXPECT_TRUE(initialize(database));
        state = std::make_unique<nxLC::State>(database);
        if (auto const error = state->run("nx = {kept = 1} host = {}", "=host")) ADD_FAILURE() << error->what();
        EXPECT_TRUE(initialize(*state));
        give<Domain*>("domain", &domain);
        give("sink", ur::Reference<DataSink>(sink));
        give("buffer", ur::make<urThread::Buffer>("bytes"));
        give<Registry*>("registry", &registry);
        give<nxNet::Manager*>("network", &transfers);
        give("report", nxRFL::makeFunction(database, [this](urString::CString const& what,
                                                            urString::CString const& with) { report(what, with); }));
        give("text", nxRFL::makeFunction(database, [this] { return urString::CString(sink->text); }));
    }

    template <class T>
    void give(char const* name, T const& value) {
        nxRFL::Stack arguments;
        nxRFL::Stack results;
        nxRFL::Writer writer(arguments);
        writer.writeText(name);
        nxRFL::write(writer, value);
        if (auto const error = state->run("local name, value = ... host[name] = value", "=give", arguments, results))
            ADD_FAILURE() << error->what();
    }
    /// Runs a script and returns its error, or "ok".
    std::string run(std::string const& script) {
        Context const context(&domain, Context::AppOnly);
        auto const error = state->run(script, "=test");
        return error ? std::string(error->message().view()) : "ok";
    }

    /// Reports an event of the most recently created connection.
    void report(urString::CString const& what, urString::CString const& with) const {
        if (what == "connected") transfers.last->setConnected();
        if (what == "data") transfers.last->arrive(with);
        if (what == "failed") transfers.last->setFailed(std::stoi(with.c_str()));
        if (what == "complete") transfers.last->setComplete();
    }

    std::unique_ptr<Broadcaster> broadcaster = std::make_unique<Broadcaster>();
    Host domain;
    ur::Reference<TextSink> sink = ur::make<TextSink>();
    nxRFL::Database database;
    Registry registry;
    nxNet::Transfers transfers;
    std::unique_ptr<nxLC::State> state;
};

}  // namespace nxSupport
