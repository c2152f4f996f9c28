// Values shared by a host and its scripts, and facts about the process.
#include <cstdio>

#include "foundation/nxLC/State.h"
#include "foundation/nxRFL/ExposeClass.h"
#include "support/services/Registry.h"
#include "support/services/display.h"
#include "support/services/env.h"
#include "support/services/version.h"

int main() {
    // [registry]
    nxRFL::Database database;
    nxRFL::ExposeClass<nxSupport::Registry>(database, "nxSupport::Registry")
        .addMethod("setKey", &nxSupport::Registry::setKey)
        .addMethod("getKey", &nxSupport::Registry::getKey);
    nxSupport::Registry registry;  // must be destroyed before the database
    auto stack = std::make_unique<nxRFL::Stack>();
    nxRFL::Writer(*stack).writeText("clay");
    registry.setKey("material", nxSupport::RegistryValue(stack.release()));
    // [registry]

    // [script]
    nxLC::State state(database);
    nxRFL::Stack arguments;
    nxRFL::Stack results;
    nxRFL::Writer writer(arguments);
    nxRFL::write(writer, &registry);
    auto const error = state.run(R"(
        local registry = ...
        print(registry:getKey("material"), registry:getKey("colour"))
        registry:setKey("sizes", { 1, 2.5 }))",
                                 "=script", arguments, results);
    if (error) std::printf("%s\n", error->what());
    nxRFL::Reader reader(*registry.getKey("sizes").getItem());
    ur::vector<double> sizes;
    nxRFL::read(reader, sizes);
    std::printf("%g to %g\n", sizes.front(), sizes.back());
    // [script]

    // [settings]
    if (nxSupport::env(nxSupport::EnvVar_NoLogo)) std::printf("no logo today\n");
    nxSupport::setDisplayDPI(264);
    std::printf("%s %s picks what is %d dots away\n", nxSupport::getProductName().c_str(),
                nxSupport::getVersionString().c_str(), nxSupport::getHitTestRadius());
    // [settings]
}
