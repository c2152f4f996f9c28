// Clearing the cache on the host's request.
#include <functional>

#include "krcache/tests/TestKeys.h"
#include "support/messaging/CallInfo.h"
#include "support/messaging/PreClearResourcesMsg.h"
#include "support/messaging/tests/Host.h"
#include "support/services/clearResources.h"
#include "support/services/tests/Output.h"

namespace nxSupport {
namespace {

struct ClearResourcesTest : OutputTest, Host {
    /// A shim whose resource is built.
    ur::Reference<urKRCache::Shim> built(int number) {
        auto shim = cache.shim(ur::make<urKRCache::test::Key>(number, 100));
        cache.access(shim);
        return shim;
    }

    urKRCache::test::Cache cache;
    urKRCache::Manager& manager = cache.manager;
    Broadcaster broadcaster;
};

TEST_F(ClearResourcesTest, SubscribersUnlockFirst) {
    provide = [this](CallInfo& callInfo) { callInfo.add(&broadcaster), callInfo.add(&manager); };
    auto const plain = built(1), unlocked = built(2), locked = built(3), paged = built(4);
    manager.setSerializable(paged);
    manager.lockResource(unlocked);
    manager.lockResource(locked);
    std::string events;
    auto const subscription = broadcaster.subscribe<PreClearResourcesMsg>({}, [&](PreClearResourcesMsg&) {
        events += plain->isResourceAllocated() ? "in time " : "late ";
        manager.unlockResource(unlocked);
    });
    Context const context(this, Context::NoTxn);
    debug.enable(Debug_Resources);
    clearResources();
    EXPECT_EQ(events, "in time ");
    EXPECT_FALSE(plain->isResourceAllocated() || unlocked->isResourceAllocated());
    EXPECT_TRUE(locked->isResourceAllocated() && paged->isResourceSerialized());
    EXPECT_EQ(manager.numKeys(), 4);

    std::string const text = printed();
    int resident = 0;
    ASSERT_EQ(std::sscanf(text.c_str(), "Resident size of process %d bytes.", &resident), 1);
    EXPECT_GT(resident, 1000000);
    EXPECT_EQ(text.substr(text.find(" bytes")),
              " bytes.\n  Clearing 400 bytes of cached resources.\nResources cleared.\n");
    EXPECT_EQ(debug.indent(), 0);

    debug.disable(Debug_Resources);
    manager.unlockResource(locked);
    clearResources();
    EXPECT_FALSE(locked->isResourceAllocated());
    EXPECT_EQ(printed(), "");
}

TEST_F(ClearResourcesTest, DoesWithoutWhatTheHostDoesNotOffer) {
    auto const shim = built(1);
    clearResources();  // without any context
    int calls = 0;
    auto const subscription = broadcaster.subscribe<PreClearResourcesMsg>({}, [&](PreClearResourcesMsg&) { ++calls; });
    provide = [this](CallInfo& callInfo) { callInfo.add(&broadcaster); };
    {
        Context const context(this, Context::NoTxn);
        clearResources();
        EXPECT_TRUE(calls == 1 && shim->isResourceAllocated());
    }
    provide = [this](CallInfo& callInfo) { callInfo.add(&manager); };
    Context const context(this, Context::NoTxn);
    clearResources();
    EXPECT_TRUE(calls == 1 && !shim->isResourceAllocated());
}

}  // namespace
}  // namespace nxSupport
