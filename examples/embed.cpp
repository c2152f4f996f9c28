// A host in one page: a domain that offers services, the library's start-up, and a script that works with the host.
#include <cstdio>

#include "foundation/nxLC/State.h"
#include "foundation/nxRFL/ExposeFunction.h"
#include "foundation/urThread/RunQueue.h"
#include "script/initialize.h"
#include "support/messaging/CallInfo.h"
#include "support/messaging/Domain.h"
#include "support/messaging/InitializeLuaMsg.h"
#include "support/messaging/InitializeReflectionMsg.h"
#include "support/services/Registry.h"

using nxSupport::Context;

/// What every host derives: says where tasks complete, and which services there are.
class Application final : public nxSupport::Domain {
public:
    Application() : Domain(nullptr) {}
    urThread::RunQueue& runQueue() override { return queue_; }

    nxSupport::Broadcaster broadcaster;
    nxSupport::Registry registry;

protected:
    void onBeginContext(Context const&) override {}
    void onEndContext(Context const&) override {}
    void onCallInfoCreated(nxSupport::CallInfo* callInfo, bool) override {
        callInfo->add(&broadcaster);
        callInfo->add(&registry);
    }
    void onCallInfoDestroyed(nxSupport::CallInfo*) override {}

private:
    urThread::RunQueue queue_;
};

int main() {
    nxRFL::Database database;  // knows what scripts see, and outlives what they stored
    Application application;

    Context const context(&application, Context::NoTxn);
    nxSupport::initialize();
    nxSupport::InitializeReflectionMsg reflection(&database);
    application.broadcaster.broadcast(reflection);
    nxRFL::ExposeFunction(database, "app").add("area", [](double width, double depth) { return width * depth; });

    nxLC::State state(database, nxLC::Library::sandboxed);
    auto error = state.run("nx = {}", "=start");  // the host's own table, in which the library puts its functions
    nxSupport::InitializeLuaMsg lua(nxSupport::InitializeLuaMsg::Application, state.get());
    application.broadcaster.broadcast(lua);

    if (!error) {
        error = state.run(R"(
            local desk = nx.decodeJSON2('{"width": 1.5, "depth": 0.5, "labels": ["oak", "used"]}')
            print(desk.labels[1], app.area(desk.width, desk.depth))
            nxSupport.ci(nxSupport.Registry):setKey("width", desk.width))",
                          "@desk.lua");
    }
    if (error) {
        std::fprintf(stderr, "%s\n%s\n", error->what(), error->trace().c_str());
        return 1;
    }
    nxRFL::Reader reader(*application.registry.getKey("width").getItem());
    std::printf("the host finds a width of %g\n", reader.readDouble());
}
