// A host on one page: a domain that offers services, the library's start-up, and a script that uses the host.
#include <cstdio>

#include "foundation/nxLC/State.h"
#include "foundation/nxRFL/ExposeFunction.h"
#include "script/initialize.h"
#include "support/messaging/ServiceDomain.h"
#include "support/services/Registry.h"

int main() {
    nxRFL::Database database;  // the classes for scripts; outlives every value that a script has stored
    urThread::RunQueue queue;  // tasks complete here
    nxSupport::Broadcaster broadcaster;
    nxSupport::Registry registry;
    nxSupport::ServiceDomain application(queue);
    application.offer(&broadcaster);
    application.offer(&registry);

    nxSupport::Context const context(&application, nxSupport::Context::NoTxn);
    nxSupport::initialize(database);
    nxRFL::ExposeFunction(database, "app").add("area", [](double width, double depth) { return width * depth; });
    nxLC::State state(database, nxLC::Library::sandboxed);
    nxSupport::initialize(state);

    auto const error = state.run(R"(
        local desk = nx.decodeJSON('{"width": 1.5, "depth": 0.5, "labels": ["oak", "used"]}')
        print(desk.labels[1], app.area(desk.width, desk.depth))
        nxSupport.ci(nxSupport.Registry):setKey("width", desk.width))",
                                 "@desk.lua");
    if (error) {
        std::fprintf(stderr, "%s\n%s\n", error->what(), error->trace().c_str());
        return 1;
    }
    nxRFL::Reader reader(*registry.getKey("width").getItem());
    std::printf("the host finds a width of %g\n", reader.readDouble());
}
