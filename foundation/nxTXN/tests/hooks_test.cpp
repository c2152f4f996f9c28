// Tests when hooks run, and what happens when they throw or interfere.
#include <memory>
#include <set>
#include <stdexcept>

#include "foundation/nxTXN/HookError.h"
#include "foundation/nxTXN/Transaction.h"
#include "foundation/nxTXN/tests/Node.h"

namespace nxTXN::test {
namespace {

/// root -> a, and a separate b; everything logs.
struct Hooks : testing::Test {
    Log log;
    Manager manager;
    NodeReference root = ur::make<Node>(manager, "root", &log);
    NodeReference b = ur::make<Node>(manager, "b", &log);

    Hooks() {
        root->setNext(ur::make<Node>(manager, "a", &log));
        b->setValue(1);
    }
    ~Hooks() override {
        root->onHook = b->onHook = nullptr;
        manager.clear();
    }
    Node& a() { return *root->next(); }
};

TEST_F(Hooks, RunInTheOrderOfTheRecordAndBackwardsOnUndo) {
    edit(manager, [&] {
        root->setValue(1);
        b->setValue(2);
    });
    EXPECT_EQ(log.take(), "");
    root->onHook = b->onHook = [&](std::string const& hook) {
        if (hook == "modified") log.add(std::to_string(int(root->value() * 10 + b->value())));
        EXPECT_FALSE(manager.undo() || manager.redo() || manager.clear());
    };
    manager.undo();
    EXPECT_EQ(log.take(), "b:restored root:restored b:modified 1 root:modified 1");
    manager.redo();
    EXPECT_EQ(log.take(), "root:restored b:restored root:modified 12 b:modified 12");
    manager.begin();
    b->setValue(3);
    root->setValue(3);
    manager.abort();
    EXPECT_EQ(log.take(), "root:restored b:restored root:modified 12 b:modified 12");
}

TEST_F(Hooks, NotifyDestructionAtOnceAndExistenceAfterRestoring) {
    edit(manager, [&] { root->setNext(nullptr); });
    EXPECT_EQ(log.take(), "a:destroyed a:gone");
    manager.undo();
    EXPECT_EQ(log.take(), "root:restored a:extant root:modified");
    manager.redo();
    EXPECT_EQ(log.take(), "root:restored a:gone root:modified");
    manager.clear();
    EXPECT_EQ(log.take(), "a:destroyed a:deleted");

    edit(manager, [&] { b->setNext(ur::make<Node>(manager, "new", &log)); });
    NodeReference held = b->next();
    manager.undo();
    EXPECT_EQ(log.take(), "b:restored new:gone b:modified");
    held.reset();
    EXPECT_EQ(log.take(), "") << "it may come back";
    manager.redo();
    EXPECT_EQ(log.take(), "b:restored new:extant b:modified");
    manager.undo();
    log.take();
    edit(manager, [&] { b->setValue(5); });
    EXPECT_EQ(log.take(), "new:destroyed new:deleted");
    manager.begin();
    b->setNext(ur::make<Node>(manager, "failed", &log));
    manager.abort();
    EXPECT_EQ(log.take(), "b:restored failed:gone b:modified failed:destroyed failed:deleted");
}

TEST_F(Hooks, ARestoreHookChoosesTheMoment) {
    root->restoreHook = [](Object* object, Restorer& restorer) {
        auto& node = static_cast<Node&>(*object);
        node.told(std::to_string(int(node.value())));
        restorer.restore(object);
        restorer.restore(object);
        node.told(std::to_string(int(node.value())));
    };
    b->restoreHook = [](Object* object, Restorer&) { static_cast<Node*>(object)->told("left to the library"); };
    edit(manager, [&] {
        root->setValue(7);
        b->setValue(7);
    });
    manager.undo();
    EXPECT_EQ(log.take(), "b:left to the library b:restored root:7 root:0 root:restored b:modified root:modified");
    EXPECT_EQ(b->value(), 1);
    manager.begin();
    root->setValue(8);
    manager.abort();
    EXPECT_EQ(log.take(), "root:8 root:0 root:restored root:modified");
    root->restoreHook = [](Object* object, Restorer& restorer) {
        restorer.restore(object);
        static_cast<Node&>(*object).setValue(50);
    };
    EXPECT_TRUE(manager.redo());
    EXPECT_EQ(root->value(), 50) << "fields are restored once";
}

/// The outcome that a throwing operation reports.
template <class Operation>
std::string outcomeOf(Operation operation) {
    try {
        operation();
    } catch (HookError const& error) {
        EXPECT_THROW(error.rethrow_nested(), std::runtime_error);
        return error.what();
    }
    return "no error";
}

TEST_F(Hooks, AnExceptionOfAHookStillCompletesTheStep) {
    edit(manager, [&] {
        root->setValue(2);
        root->setNext(nullptr);
        b->setValue(2);
    });
    for (std::string const thrower : {"restored", "modified", "restore"}) {
        if (thrower == "restore") b->restoreHook = [](Object*, Restorer&) { throw std::runtime_error("restore"); };
        b->onHook = [&](std::string const& hook) {
            if (hook == thrower) throw std::runtime_error(thrower);
        };
        EXPECT_EQ(outcomeOf([&] { manager.undo(); }), "all was done, but: " + thrower);
        EXPECT_EQ(root->value() * 10 + b->value(), 1);
        EXPECT_TRUE(root->next() && a().isTxnExtant());
        EXPECT_EQ(outcomeOf([&] { manager.redo(); }), "all was done, but: " + thrower);
        EXPECT_EQ(root->value() * 10 + b->value(), 22);
        manager.begin();
        root->setValue(5);
        b->setValue(5);
        EXPECT_EQ(outcomeOf([&] { manager.abort(); }), "all was done, but: " + thrower);
        EXPECT_EQ(root->value() * 10 + b->value(), 22);
    }
    EXPECT_EQ(manager.undoCount(), 1u);
}

/// Fails when its field is written or read for the n-th time from now.
class Fragile : public RefCountedObject {
public:
    using RefCountedObject::RefCountedObject;

    inline static int failWriteIn = -1;
    inline static int failReadIn = -1;
    int value = 0;
    RestoreHook restoreHook = nullptr;

    void set(int newValue) {
        transact();
        value = newValue;
    }

protected:
    void onTransact(Serializer& serializer) override {
        static constexpr FieldHandlers handlers = {[](Writer& writer, void const* field) {
                                                       if (failWriteIn-- == 0) throw std::runtime_error("write");
                                                       writer.writeData(field, sizeof(int));
                                                   },
                                                   [](Reader& reader, void* field) {
                                                       reader.readData(field, sizeof(int));
                                                       if (failReadIn-- == 0) throw std::runtime_error("read");
                                                   },
                                                   nullptr};
        serializer.beginObject(this, restoreHook);
        serializer.field(&value, handlers);
        serializer.endObject(this);
    }
};

TEST_F(Hooks, ARestoreHookMayDestroyItsObject) {
    struct Owned : Object {
        Owned(Manager& manager, bool& mark) : Object(manager), gone(mark) {}
        ~Owned() override { gone = true; }
        int value = 1;
        bool& gone;
        void onTransact(Serializer& serializer) override {
            serializer.beginObject(this, [](Object* object, Restorer&) { delete object; });
            serializer.field(value);
            serializer.endObject(this);
        }
    };
    bool gone = false;
    auto* const owned = new Owned(manager, gone);
    edit(manager, [&] {
        root->setValue(5);
        owned->transact();
        owned->value = 2;
    });
    EXPECT_TRUE(manager.undo());
    EXPECT_TRUE(gone);
    EXPECT_EQ(root->value(), 0);
}

TEST_F(Hooks, ReadingMoreThanWasWrittenGivesZerosAndNull) {
    Writer writer;
    writer.writeData("ab", 2);
    Reader reader(writer);
    char text[] = "xxxx";
    reader.readData(text, 4);
    EXPECT_EQ(std::string(text, 4), std::string("ab\0\0", 4));
    reader.readData(text, 1);
    EXPECT_EQ(text[0], '\0');
    EXPECT_EQ(reader.readPtr(), nullptr);
}

TEST_F(Hooks, AFieldThatCannotBeSavedOrReadLeavesTheStepUndone) {
    auto const fragile = ur::make<Fragile>(manager);
    auto const other = ur::make<Fragile>(manager);
    auto const state = [&] {
        return std::to_string(fragile->value) + std::to_string(other->value) + (root->next() ? "a" : "-");
    };
    auto const expectUnchanged = [&](bool (Manager::*turn)(), int fields) {
        std::string const before = state();
        for (int nth = 0; nth < fields; ++nth) {
            for (auto [failing, text] : {std::pair(&Fragile::failWriteIn, "write"), {&Fragile::failReadIn, "read"}}) {
                *failing = nth;
                EXPECT_EQ(outcomeOf([&] { (manager.*turn)(); }), std::string("nothing was done: ") + text);
                EXPECT_EQ(state(), before);
            }
        }
        EXPECT_TRUE((manager.*turn)());
    };
    edit(manager, [&] { other->set(1); });  // a step of one object takes another path than a step of several
    edit(manager, [&] {
        root->setNext(nullptr);
        fragile->set(2);
        other->set(2);
    });
    expectUnchanged(&Manager::undo, 2);
    EXPECT_EQ(state(), "01a");
    expectUnchanged(&Manager::undo, 1);
    EXPECT_EQ(state(), "00a");
    manager.redo();
    other->restoreHook = [](Object* object, Restorer& restorer) {
        try {
            restorer.restore(object);
        } catch (std::runtime_error const&) {  // hides it from the library, which must notice nevertheless
        }
    };
    expectUnchanged(&Manager::redo, 2);
    EXPECT_EQ(state(), "22-");

    manager.begin();
    Fragile::failWriteIn = 0;
    EXPECT_THROW(fragile->set(5), std::runtime_error);
    other->set(5);
    manager.abort();
    EXPECT_EQ(state(), "22-");

    manager.undo();  // makes the end of the next transaction check for changes
    manager.begin();
    fragile->set(fragile->value);
    Fragile::failWriteIn = 0;
    EXPECT_TRUE(manager.commit());
    Fragile::failWriteIn = -1;
    EXPECT_FALSE(manager.canRedo()) << "what cannot be compared counts as a change";
    manager.clear();
    EXPECT_EQ(Node::alive, root->next() ? 3 : 2) << "what failed keeps nothing";
}

TEST_F(Hooks, MayEditMakeAndDropObjectsWithoutEnteringTheHistory) {
    NodeReference made;
    NodeReference passing = ur::make<Node>(manager, "passing");
    passing->onHook = [&](std::string const& hook) {
        if (hook == "destroyed") root->setValue(7);
    };
    b->onHook = [&](std::string const& hook) {
        if (hook != "restored") return;
        Transaction transaction(manager, "from a hook");
        b->setValue(50);
        transaction.commit();
        EXPECT_FALSE(manager.commit());
        made = ur::make<Node>(manager, "made");
        made->setValue(3);
        passing.reset();
    };
    manager.begin();
    edit(manager, [&] { b->setValue(2); });
    manager.begin();
    b->setValue(4);
    manager.abort();  // inside of a transaction that is recorded
    EXPECT_EQ(b->value() * 100 + made->value() * 10 + root->value(), 5037);
    EXPECT_TRUE(made->isTxnExtant());
    manager.commit();
    manager.undo();
    EXPECT_EQ(b->value() * 10 + root->value(), 507);
    b->onHook = nullptr;
    manager.redo();
    EXPECT_EQ(b->value(), 50);
    EXPECT_TRUE(made->isTxnExtant());
}

TEST_F(Hooks, OfAnotherManagersObjectsDoNotMoveItsHistory) {
    Manager other;
    auto const foreign = ur::make<Node>(other, "foreign");
    edit(other, [&] { foreign->setValue(1); });
    NodeReference leaf = ur::make<Node>(other, "leaf");
    int calls = 0;
    leaf->onHook = [&](std::string const& hook) {
        if (hook != "gone" && hook != "extant") return;
        ++calls;
        EXPECT_FALSE(other.undo());
        edit(other, [&] { foreign->setValue(foreign->value() + 1); });
    };
    edit(manager, [&] { root->setNext(std::move(leaf)); });
    EXPECT_TRUE(manager.undo() && manager.redo());
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(other.undoCount(), 1U);
    EXPECT_TRUE(other.undo());
    root->next()->onHook = nullptr;
}

TEST(HookLifetime, MayDestroyTheManagerThatRunsThemOrOneWhoseObjectsAreSettled) {
    std::pair<std::string, bool (Manager::*)()> const actions[] = {
        {"undo", &Manager::undo}, {"abort", &Manager::abort}, {"commit", &Manager::commit}, {"clear", &Manager::clear}};
    std::set<std::string> reached;
    for (auto const& [name, act] : actions) {
        for (std::string const hook : {"restored", "modified", "gone", "extant", "destroyed", "deleted", "changed"}) {
            for (bool const destroysPeer : {false, true}) {
                SCOPED_TRACE(name + " " + hook + (destroysPeer ? " peer" : ""));
                auto manager = std::make_unique<Manager>();
                auto peer = std::make_unique<Manager>();
                auto const root = ur::make<Node>(*manager, "root");
                Node* leaf = nullptr;
                bool armed = false;
                edit(*manager, [&] {
                    auto const made = ur::make<Node>(*peer, "leaf");
                    made->setNext(ur::make<Node>(*peer, "end"));
                    root->setNext(made);
                    leaf = made.get();
                });
                auto const destroy = [&](std::string const& called) {
                    if (!armed || called != hook) return;
                    reached.insert(name + " " + hook);
                    (destroysPeer ? peer : manager).reset();
                };
                root->onHook = leaf->onHook = destroy;
                manager->changedSignal().addCallback([&] { destroy("changed"); });
                if (name == "abort" || name == "commit") manager->begin();
                if (name != "undo") root->setNext(nullptr);
                armed = true;
                EXPECT_TRUE((*manager.*act)());
                armed = false;
                EXPECT_EQ(root->txnManager(), manager.get());
                root->onHook = nullptr;
                if (root->next()) root->next()->onHook = nullptr;
                manager.reset();
                peer.reset();
                root->setNext(nullptr);
                EXPECT_EQ(Node::alive, 1);
            }
        }
    }
    EXPECT_THAT(reached,
                testing::ElementsAre("abort extant", "abort modified", "abort restored", "clear changed",
                                     "commit changed", "undo changed", "undo gone", "undo modified", "undo restored"));
}

TEST(HookLifetime, SavingAFieldMayDestroyTheManager) {
    struct Field : RefCountedObject {
        explicit Field(std::unique_ptr<Manager>& kept) : RefCountedObject(*kept), manager(kept) {}
        void onTransact(Serializer& serializer) override {
            manager.reset();
            serializer.field(value);
        }
        std::unique_ptr<Manager>& manager;
        int value = 0;
    };
    auto manager = std::make_unique<Manager>();
    auto const field = ur::make<Field>(manager);
    manager->begin();
    field->transact();
    EXPECT_EQ(field->txnManager(), nullptr);
    field->transact();
}

TEST_F(Hooks, MayRecordTheObjectsThatAnObjectDestroys) {
    a().setNext(ur::make<Node>(manager, "child", &log));
    Node* const child = a().next().get();
    Node* const parent = &a();
    parent->onHook = [parent](std::string const& hook) {
        if (hook == "destroyed") parent->setNext(nullptr);
    };
    edit(manager, [&] { root->setNext(nullptr); });
    EXPECT_EQ(log.take(), "a:destroyed a:gone child:destroyed child:gone");
    manager.undo();
    EXPECT_EQ(a().next(), child);
    EXPECT_TRUE(child->isTxnExtant());
    EXPECT_EQ(log.take(), "a:restored root:restored child:extant a:extant a:modified root:modified");
    parent->onHook = nullptr;
}

}  // namespace
}  // namespace nxTXN::test
