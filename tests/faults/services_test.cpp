// Properties and their history, the cache, and scripts while memory runs out.
#include <filesystem>

#include "foundation/nxLC/State.h"
#include "foundation/nxRFL/ExposeFunction.h"
#include "foundation/nxTXN/Transaction.h"
#include "krcache/Manager.h"
#include "plst/Array.h"
#include "plst/Double.h"
#include "plst/json.h"
#include "script/luaFunctions.h"
#include "support/properties/TxdProperty.h"
#include "support/properties/UnTxdProperty.h"
#include "tests/faults/survives.h"

namespace faults {
namespace {

using nxPLST::Item;
using nxSupport::Property;
using ur::Reference;
using urString::CString;

Reference<Item> list(double first) {
    auto array = ur::make<nxPLST::Array>();
    array->insert(ur::make<nxPLST::Double>(first));
    return array;
}

/// Two properties with one value, a listener, and a history.
struct SetProperty {
    SetProperty() {
        history.begin("make", nxTXN::TransactionKind::none);
        property = Property::createTxd(history, "brush.radius", list(1));
        twin = property->cloneUnTxd("slider");
        history.commit();
        connection = twin->subscribe([this](auto const& /*property*/, auto /*stage*/) { events = value(); });
    }
    bool act() { return set(property); }
    bool set(Reference<Property> const& through) {
        nxTXN::Transaction transaction(history, "a name that is too long to be held in place");
        through->setValue(list(2));
        return transaction.commit();
    }
    std::string value() const { return std::string(nxPLST::asJSON(property->value())); }
    std::string state() const {
        return value() + std::string(nxPLST::asJSON(twin->value())) + " steps " + std::to_string(history.undoCount()) +
               "/" + std::to_string(history.redoCount());
    }

    nxTXN::Manager history;
    Reference<Property> property, twin;
    urRTB::ScopedConnection connection;
    std::string events;
};

struct SetTwin : SetProperty {
    bool act() { return set(twin); }
};

struct UndoProperty : SetProperty {
    UndoProperty() { SetProperty::act(); }
    bool act() { return history.undo(); }
};

struct RedoProperty : UndoProperty {
    RedoProperty() { history.undo(); }
    bool act() { return history.redo(); }
};

/// Two properties with one value join a third one, whose joined set thereby gets its other side.
struct JoinProperties {
    JoinProperties() {
        history.begin("make", nxTXN::TransactionKind::none);
        for (int i = 0; i < 2; ++i) transacted.push_back(Property::createTxd(history, "transacted", list(i)));
        history.commit();
    }
    bool act() { return join(plain, transacted[0]); }
    bool join(Reference<Property> const& property, Reference<Property> const& other) {
        nxTXN::Transaction transaction(history);
        property->join(other);
        return transaction.commit();
    }
    /// The values, and the number of members in each list.
    std::string state() const {
        std::string text;
        auto const tell = [&text](auto const& property) {
            text += std::string(nxPLST::asJSON(property.value())) + std::to_string(property.data()->members().size());
        };
        for (auto const& property : transacted) tell(static_cast<nxSupport::TxdProperty&>(*property));
        for (auto const& property : {plain, clone}) tell(static_cast<nxSupport::UnTxdProperty&>(*property));
        return text;
    }

    nxTXN::Manager history;
    std::vector<Reference<Property>> transacted;
    Reference<Property> plain = Property::createUnTxd("plain", list(2)), clone = plain->cloneUnTxd();
};

/// Two lists change; the listener runs out of memory.
struct RedoJoin : JoinProperties {
    RedoJoin() {
        join(transacted[1], transacted[0]);
        history.undo();
        transacted[1]->txnModifiedSignal()->addCallback([this](auto const& /*property*/) { events = state(); });
    }
    bool act() { return history.redo(); }
    std::string events;
};

struct Text : urKRCache::Resource {
    Text(std::string what, unsigned bytes) : text(std::move(what)), size(bytes) {}
    unsigned onGetSizeInBytes() const override { return size; }
    void onSerialize(urOS::IOStream& stream) override { static_cast<void>(stream.write(text.data(), text.size())); }
    void onDeserialize(urOS::IOStream& stream) override { static_cast<void>(stream.read(text.data(), text.size())); }
    std::string text;
    unsigned size;
};

/// Compares by number; built from the text of the previous key. The resource of the first key reports too small a size.
struct Key : urKRCache::KeyData {
    Key(int which, Reference<urKRCache::Shim> from) : number(which), source(std::move(from)) {}

    int onCompare(KeyData const* other) const override { return number - static_cast<Key const*>(other)->number; }
    unsigned onHash() const override { return static_cast<unsigned>(number); }
    void onVisitSubKeys(urKRCache::KeyVisitor& visitor) const override {
        if (source) visitor.visit(source.get());
    }
    Reference<urKRCache::Resource> onCreateResource() const override;

    int number;
    Reference<urKRCache::Shim> source;
};

struct BuildResources {
    bool act() {
        first = last = nullptr;
        for (int number = 0; number < 3; ++number) {
            last = cache->getShim(ur::make<Key>(number, last), urKRCache::Shim::KeyType());
            if (!first) first = last;
        }
        auto const resource = cache->accessResource(last);
        if (!resource) return false;
        built = static_cast<Text const&>(*resource).text;
        return true;
    }
    /// The progress of a failed call does not matter, because the cache may keep what it has built.
    std::string state() const { return cache ? built + std::string(cache->audit()) : "gone"; }

    BuildResources() { current = this; }
    ~BuildResources() { current = nullptr; }
    static inline BuildResources* current = nullptr;

    std::unique_ptr<urKRCache::Manager> cache =
        std::make_unique<urKRCache::Manager>(urString::IString(std::filesystem::temp_directory_path().c_str()));
    Reference<urKRCache::Shim> first, last;
    std::string built;
};

Reference<urKRCache::Resource> Key::onCreateResource() const {
    std::string text(100, 'x');
    unsigned size = 1;
    if (source) {
        auto const built = BuildResources::current->cache->accessResource(source);
        if (!built) return nullptr;
        text += static_cast<Text const&>(*built).text;
        size = static_cast<unsigned>(text.size());
    }
    return ur::make<Text>(std::move(text), size);
}

/// Pages resources out, one of which fails, and back in, and removes a chain.
struct PageAndRemoveResources : BuildResources {
    bool act() {
        if (!BuildResources::act()) return false;
        for (auto const& shim : {first, last}) cache->setSerializable(shim);
        cache->clear();
        auto const resource = cache->accessResource(last);
        bool const isBack = resource && static_cast<Text const&>(*resource).text == built;
        auto const dependent = cache->getShim(ur::make<Key>(3, last), urKRCache::Shim::WeakCounted);
        cache->removeResource(first);
        return isBack && cache->numKeys() == 0;
    }
};

struct DestroyCache : BuildResources {
    DestroyCache() { BuildResources::act(); }
    bool act() {
        cache.reset();
        return true;
    }
};

/// A script that calls a native function, decodes a text, and assigns the results.
struct RunScript {
    RunScript() {
        nxRFL::ExposeFunction(database, "host").add("twice", [](CString const& text) { return text + text; });
        state_ = std::make_unique<nxLC::State>(database);
        EXPECT_FALSE(state_->run("nx = {} value = 'none'", "=start"));
        nxSupport::InitializeLuaMsg message(nxSupport::InitializeLuaMsg::Application, state_->get());
        nxSupport::registerLuaFunctions(message);
    }
    bool act() {
        return !state_->run(R"(
            local decoded = nx.decodeJSON2('{"list": [1, {"a": "b"}, true], "text": "a longer text than fits"}')
            value = host.twice(decoded.text .. decoded.list[2].a))",
                            "=act");
    }
    std::string state() const {
        nxRFL::Stack results;
        EXPECT_FALSE(state_->run("return value", "=state", {}, results));
        nxRFL::Reader reader(results);
        return std::string(reader.readText());
    }

    nxRFL::Database database;
    std::unique_ptr<nxLC::State> state_;
};

TEST(WithoutMemory, EditsAreMadeWholeOrNotAtAll) {
    survives<SetProperty>();
    survives<SetTwin>();
    survives<UndoProperty>();
    survives<RedoProperty>();
    survives<JoinProperties>();
    survives<RedoJoin>();
}

TEST(WithoutMemory, TheCacheStaysSound) {
    survives<BuildResources>();
    survives<PageAndRemoveResources>();
    survives<DestroyCache>();
}

TEST(WithoutMemory, ScriptsFailWithAnError) { survives<RunScript>(); }

}  // namespace
}  // namespace faults
