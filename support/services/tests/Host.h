// A host with a cache, as small as can be.
#pragma once

#include <filesystem>
#include <functional>

#include "foundation/urThread/RunQueue.h"
#include "krcache/Manager.h"
#include "support/messaging/Domain.h"

namespace nxSupport {

class Host : public Domain {
public:
    Host() : Domain(nullptr) {}
    urThread::RunQueue& runQueue() override { return queue; }

    std::function<void(CallInfo&)> provide = [](CallInfo&) {};
    urThread::RunQueue queue;

protected:
    void onBeginContext(Context const&) override {}
    void onEndContext(Context const&) override {}
    void onCallInfoCreated(CallInfo* callInfo, bool) override { provide(*callInfo); }
    void onCallInfoDestroyed(CallInfo*) override {}
};

/// A hundred bytes.
struct Blob : urKRCache::Resource {
    unsigned onGetSizeInBytes() const override { return 100; }
};

/// Equal by number; builds a blob.
struct MeshKey : urKRCache::KeyData {
    explicit MeshKey(int id) : number(id) {}

    int onCompare(KeyData const* other) const override { return number - static_cast<MeshKey const*>(other)->number; }
    unsigned onHash() const override { return 1; }
    ur::Reference<urKRCache::Resource> onCreateResource() const override { return ur::make<Blob>(); }

    int number;
};

inline urString::IString temporaryFolder() { return {std::filesystem::temp_directory_path().c_str()}; }

}  // namespace nxSupport
