// The life of an application, from its start to its shut-down, and once more.
#include <gtest/gtest.h>

#include <optional>

#include "plst/Double.h"
#include "plst/casts.h"
#include "support/messaging/AppInitMsg.h"
#include "support/messaging/AsyncTask.h"
#include "support/messaging/InitializeLuaMsg.h"
#include "support/messaging/InitializeReflectionMsg.h"
#include "support/messaging/PreClearResourcesMsg.h"
#include "support/messaging/subscribeFirstTime.h"
#include "support/messaging/tests/Host.h"

namespace {

using namespace nxSupport;

std::string story;

// A module of the host, written as modules are.
void onReflection(InitializeReflectionMsg& message) { story += message.getDB() ? "reflection " : "nothing "; }
void onLua(InitializeLuaMsg& message) { story += "lua" + std::to_string(message.getType()) + " "; }
void onAppInit(AppInitMsg& message) {
    story += std::to_string(int(asDouble(message.parameters()->get("windows"))->value())) + " windows ";
}
void onPreClear(PreClearResourcesMsg&) { story += "clear "; }
void initializeModule() {
    static bool reflection = true, lua = true, init = true, clear = true;
    subscribeFirstTime(reflection, onReflection);
    subscribeFirstTime(lua, onLua);
    subscribeFirstTime(init, onAppInit);
    subscribeFirstTime(clear, onPreClear);
}

struct Load : AsyncTask {
    using AsyncTask::AsyncTask;
    void execute() override {}
    void onComplete(bool waited) override { story += waited ? "loaded-waited " : "loaded "; }
};

TEST(HostLife, GoesTheSameWayTwiceInOneProcess) {
    for (int life = 0; life < 2; ++life) {
        story.clear();
        Host host;
        std::optional<Broadcaster> broadcaster(std::in_place);
        host.provide = [&](CallInfo& info) { info.add(&*broadcaster); };
        int standIn = 0;  // nothing here looks into the database or the Lua state
        {
            Context const start(&host, Context::Bootstrap);
            initializeModule();  // finds no broadcaster yet
        }
        {
            Context const start(&host, Context::NoTxn);
            initializeModule();
            InitializeReflectionMsg reflection(reinterpret_cast<nxRFL::Database*>(&standIn));
            ci().get<Broadcaster>()->broadcast(reflection);
            InitializeLuaMsg lua(InitializeLuaMsg::Application, reinterpret_cast<lua_State*>(&standIn));
            ci().get<Broadcaster>()->broadcast(lua);
            auto const parameters = ur::make<nxPLST::Dictionary>();
            parameters->insert("windows", ur::make<nxPLST::Double>(3));
            AppInitMsg init(parameters);
            ci().get<Broadcaster>()->broadcast(init);
        }
        {
            Context const edit(&host, Context::Momentary);
            edit.addPostFunction([](Domain*) { story += "redraw "; });
            Context const look(&host, Context::Const);
            PreClearResourcesMsg clear;
            ci().get<Broadcaster>()->broadcast(clear);
        }
        ur::make<Load>(host)->startThread();
        EXPECT_TRUE(host.waitForAsyncTask());
        EXPECT_EQ(host.queue.service(), 1U);
        EXPECT_FALSE(host.waitForAsyncTask());
        broadcaster.reset();
        EXPECT_EQ(story, "reflection lua0 3 windows clear redraw loaded-waited ");
        EXPECT_EQ(host.getCurrentContext(), nullptr);
    }
}

}  // namespace
