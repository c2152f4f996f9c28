// Tests which objects exist, what keeps them and when they are deleted.
#include <array>
#include <map>
#include <optional>

#include "foundation/nxTXN/tests/Node.h"
#include "foundation/ur/ReferenceCount.h"

namespace nxTXN::test {
namespace {

/// A plain counted object, and one whose transaction part is not its first base.
struct Plain : ur::ReferenceCount {
    inline static int alive = 0;
    Plain() { ++alive; }
    ~Plain() override { --alive; }
};
struct Named {
    virtual ~Named() = default;
    int number = 5;
};
struct Both : Named, Node {
    using Node::Node;
};

/// Has pointers of every kind.
struct Holder : RefCountedObject {
    using RefCountedObject::RefCountedObject;

    ur::Reference<Plain> plain;
    ur::Reference<Both> both;
    char const* odd = nullptr;

    void onTransact(Serializer& serializer) override {
        static constexpr FieldHandlers handlers = {
            [](Writer& writer, void const* field) {
                auto const& holder = *static_cast<Holder const*>(field);
                writer.writePtr(holder.plain.get());
                writer.writePtr(static_cast<Named const*>(holder.both.get()), holder.both.get());
                writer.writePtr(holder.odd);
            },
            [](Reader& reader, void* field) {
                auto& holder = *static_cast<Holder*>(field);
                holder.plain.reset(static_cast<Plain*>(reader.readPtr()));
                holder.both.reset(static_cast<Both*>(static_cast<Named*>(reader.readPtr())));
                holder.odd = static_cast<char const*>(reader.readPtr());
            },
            nullptr};
        serializer.field(this, &handlers);
    }
};

struct Lifetime : testing::Test {
    Manager manager;
    NodeReference root = ur::make<Node>(manager, "root");

    int others() const { return Node::alive - 1; }
    NodeReference make(char const* name, Log* log = nullptr) { return ur::make<Node>(manager, name, log); }
};

TEST_F(Lifetime, AnObjectThatNothingNeedsIsDeletedAtOnce) {
    manager.begin();
    for (int i = 0; i < 100; ++i) root->setNext(make("a"));
    EXPECT_EQ(others(), 1);
    manager.abort();
    EXPECT_EQ(others(), 0);
    Node* loose = nullptr;
    edit(manager, [&] { loose = new Node(manager, "never referred to"); });
    edit(manager, [&] { loose->setValue(1); });
    std::size_t const bytes = manager.historyBytes();
    EXPECT_TRUE(manager.undo() && manager.undo() && manager.redo() && manager.redo());
    EXPECT_EQ(manager.historyBytes(), bytes);
    EXPECT_TRUE(manager.undo() && manager.undo());
    manager.clear();
    EXPECT_EQ(others(), 0);

    for (int i = 0; i < 300000; ++i) {  // a chain too long for recursion
        NodeReference const link = make("link");
        link->setNext(root->next());
        root->setNext(link);
    }
    root->setNext(nullptr);
    EXPECT_EQ(others(), 0);
}

TEST_F(Lifetime, AReferenceKeepsAnObjectWhoseMakingIsUndone) {
    NodeReference made;
    edit(manager, [&] {
        made = make("a");
        made->setValue(3);
        root->setNext(made);
    });
    manager.undo();
    EXPECT_FALSE(made->isTxnExtant());
    EXPECT_EQ(made->value(), 0);
    edit(manager, [&] { made->setValue(9); });
    EXPECT_FALSE(manager.canUndo());
    manager.redo();
    EXPECT_TRUE(made->isTxnExtant());
    EXPECT_EQ(made->value(), 3);
    manager.undo();
    manager.clear();
    EXPECT_FALSE(made->isTxnExtant());
    made.reset();
    EXPECT_EQ(others(), 0);
}

TEST_F(Lifetime, AMemberOfAListThatOwnsNothingIsNotifiedEachTimeItGoes) {
    Log log;
    NodeReference member = make("m", &log);
    member->onHook = [&](std::string const& hook) {
        if (hook == "destroyed") root->setList({});
    };
    edit(manager, [&] { root->setList({member.get()}); });
    edit(manager, [&] { root->setNext(std::move(member)); });
    edit(manager, [&] { root->setNext(nullptr); });
    EXPECT_EQ(log.take(), "m:destroyed m:gone");
    EXPECT_TRUE(root->list().empty());
    manager.undo();
    EXPECT_EQ(log.take(), "m:extant");
    EXPECT_EQ(root->list().size(), 1u);
    // Before the second step only a variable held it; now nothing does, so it leaves the list again.
    manager.undo();
    EXPECT_EQ(log.take(), "m:gone");
    EXPECT_EQ(others(), 1);
    manager.clear();
    EXPECT_EQ(log.take(), "m:destroyed m:deleted");
    EXPECT_TRUE(root->list().empty());
}

TEST_F(Lifetime, PointersOfEveryKindComeBackAsTheyWere) {
    char const text[] = "odd";
    auto const holder = ur::make<Holder>(manager);
    holder->plain = ur::make<Plain>();
    holder->both = ur::make<Both>(manager, "both");
    holder->odd = text + 1;
    edit(manager, [&] {
        holder->transact();
        holder->plain.reset();
        holder->both.reset();
        holder->odd = nullptr;
    });
    EXPECT_EQ(Plain::alive, 1);
    EXPECT_EQ(others(), 1);
    manager.undo();
    EXPECT_TRUE(holder->plain);
    ASSERT_TRUE(holder->both);
    EXPECT_EQ(holder->both->number, 5);
    EXPECT_TRUE(holder->both->isTxnExtant());
    EXPECT_EQ(holder->odd, text + 1);
    manager.redo();
    manager.clear();
    EXPECT_EQ(Plain::alive, 0);
    EXPECT_EQ(others(), 0);
}

/// Owns the elements of a vector.
struct Group : RefCountedObject {
    using RefCountedObject::RefCountedObject;

    std::vector<NodeReference> members;

    template <class Change>
    void change(Change change) {
        transact();
        change(members);
    }
    void onTransact(Serializer& serializer) override { serializer.field(members); }
};

TEST_F(Lifetime, AVectorOfReferencesOwnsItsElements) {
    auto const group = ur::make<Group>(manager);
    edit(manager, [&] { group->change([&](auto& members) { members = {make("a"), make("b"), make("c")}; }); });
    Node* const second = group->members[1].get();
    edit(manager, [&] { group->change([](auto& members) { members.erase(members.begin() + 1); }); });
    EXPECT_EQ(others(), 3);
    EXPECT_FALSE(second->isTxnExtant());
    manager.undo();
    ASSERT_EQ(group->members.size(), 3U);
    EXPECT_EQ(group->members[1], second);
    EXPECT_TRUE(second->isTxnExtant());
    manager.undo();
    EXPECT_TRUE(group->members.empty());
    EXPECT_TRUE(manager.redo() && manager.redo());
    EXPECT_EQ(group->members.size(), 2U);
    manager.clear();
    EXPECT_EQ(others(), 2);
    group->change([](auto& members) { members.clear(); });
    EXPECT_EQ(others(), 0);
}

/// Has a reference in a container of each kind.
struct Shelf : RefCountedObject {
    using RefCountedObject::RefCountedObject;

    std::optional<NodeReference> maybe;
    std::array<NodeReference, 2> pair;
    std::map<std::string, NodeReference> named;

    void onTransact(Serializer& serializer) override {
        serializer.field(maybe);
        serializer.field(pair);
        serializer.field(named);
    }
};

TEST_F(Lifetime, ContainersOfReferencesComeBackAndLetGo) {
    {
        Manager other;
        auto const shelf = ur::make<Shelf>(other);
        auto const node = [&] { return ur::make<Node>(other, "n"); };
        edit(other, [&] {
            shelf->transact();
            shelf->maybe = node();
            shelf->pair = {node(), nullptr};
            shelf->named = {{"a", node()}, {"b", nullptr}};
        });
        Node* const named = shelf->named["a"].get();
        edit(other, [&] {
            shelf->transact();
            shelf->maybe.reset();
            shelf->pair = {nullptr, node()};
            shelf->named = {{"c", node()}};
        });
        EXPECT_TRUE(other.undo());
        EXPECT_TRUE(shelf->maybe && shelf->pair[0] && !shelf->pair[1]);
        EXPECT_EQ(shelf->named.size(), 2U);
        EXPECT_EQ(shelf->named["a"].get(), named);
        EXPECT_TRUE(other.undo());
        EXPECT_FALSE(shelf->maybe || shelf->pair[0] || !shelf->named.empty());
        EXPECT_TRUE(other.redo());

        // Circles through each kind, which only clearing takes apart.
        auto const link = [&](auto set) {
            auto const owner = ur::make<Shelf>(other);
            auto const through = node();
            set(*owner, through);
            through->onHook = [owner](std::string const&) {};
        };
        link([](Shelf& owner, NodeReference const& through) { owner.maybe = through; });
        link([](Shelf& owner, NodeReference const& through) { owner.pair[1] = through; });
        link([](Shelf& owner, NodeReference const& through) { owner.named["x"] = through; });
    }
    EXPECT_EQ(others(), 0);
}

TEST_F(Lifetime, ForgetsAnObjectThatItsOwnerDestroys) {
    struct Owned : Object {
        explicit Owned(Manager& manager) : Object(manager) {}
        int value = 1;
        void onTransact(Serializer& serializer) override { serializer.field(value); }
    };
    {
        Owned owned(manager);
        edit(manager, [&] {
            owned.transact();
            owned.value = 2;
            root->setValue(2);
        });
        manager.undo();
        EXPECT_EQ(owned.value, 1);
        manager.redo();
    }
    EXPECT_TRUE(manager.undo());
    EXPECT_EQ(root->value(), 0);
    manager.clear();
    EXPECT_EQ(manager.historyBytes(), 0U);

    // A pointer to it becomes null, and data written after that pointer stays in place.
    struct Pointing : RefCountedObject {
        using RefCountedObject::RefCountedObject;
        Owned* owner = nullptr;
        int* value = nullptr;
        char const* after = nullptr;
        void onTransact(Serializer& serializer) override {
            static constexpr FieldHandlers handlers = {[](Writer& writer, void const* field) {
                                                           auto const& pointing = *static_cast<Pointing const*>(field);
                                                           writer.writePtr(pointing.value, pointing.owner);
                                                           writer.writePtr(pointing.after);
                                                       },
                                                       [](Reader& reader, void* field) {
                                                           auto& pointing = *static_cast<Pointing*>(field);
                                                           pointing.value = static_cast<int*>(reader.readPtr());
                                                           pointing.after = static_cast<char const*>(reader.readPtr());
                                                       },
                                                       nullptr};
            serializer.field(this, &handlers);
        }
    };
    auto const pointing = ur::make<Pointing>(manager);
    char const text[] = "after";
    pointing->after = text;
    {
        Owned owned(manager);
        pointing->owner = &owned;
        pointing->value = &owned.value;
        edit(manager, [&] {
            pointing->transact();
            pointing->value = nullptr;
            pointing->after = nullptr;
        });
        pointing->owner = nullptr;
    }
    EXPECT_TRUE(manager.undo());
    EXPECT_EQ(pointing->value, nullptr);
    EXPECT_EQ(pointing->after, text);
}

TEST_F(Lifetime, TheManagerTakesCyclesApartWhenItGoes) {
    NodeReference survivor;
    Log log;
    {
        Manager own;
        NodeReference const a = ur::make<Node>(own, "a", &log);
        a->setNext(ur::make<Node>(own, "b", &log));
        edit(own, [&] { a->next()->setNext(a); });
        survivor = ur::make<Node>(own, "s");
        survivor->setNext(a);
    }
    EXPECT_EQ(log.take(), "a:destroyed b:destroyed a:deleted b:deleted");
    EXPECT_FALSE(survivor->next());
    EXPECT_FALSE(survivor->isTxnExtant());
    EXPECT_EQ(survivor->txnManager(), nullptr);
    survivor->setValue(1);
    survivor.reset();
    EXPECT_EQ(others(), 0);
}

TEST_F(Lifetime, ObjectsOfTwoManagersMayReferToEachOther) {
    auto other = std::make_unique<Manager>();
    root->setNext(ur::make<Node>(*other, "foreign"));
    edit(manager, [&] { root->setNext(nullptr); });
    EXPECT_EQ(others(), 1);
    manager.undo();
    EXPECT_TRUE(root->next());
    manager.redo();
    other.reset();
    EXPECT_EQ(others(), 0);
    EXPECT_TRUE(manager.undo());
    EXPECT_FALSE(root->next());
}

TEST_F(Lifetime, KeepsTrackOfObjectsThroughAnyNumberOfThem) {
    // Undone creations must stay with their step while the gaps between objects are closed repeatedly.
    auto const makePassing = [this](int count) {
        while (count-- > 0) NodeReference const passing = make("passing");
    };
    ur::vector<NodeReference> kept;
    for (int i = 0; i < 200; ++i) {
        edit(manager, [&] { kept.push_back(make("kept")); });
        makePassing(50);
    }
    for (int i = 0; i < 100; ++i) manager.undo();
    makePassing(5000);
    for (std::size_t i = 0; i < kept.size(); ++i) EXPECT_EQ(kept[i]->isTxnExtant(), i < 100) << i;
    while (manager.redo()) {
    }
    for (auto const& node : kept) EXPECT_TRUE(node->isTxnExtant());
    int const before = Node::alive;
    for (int i = 0; i < 100; ++i) {  // also while others wait to be taken down
        NodeReference const link = make("link");
        link->setNext(root->next());
        root->setNext(link);
        link->onHook = [&](std::string const& hook) {
            if (hook == "destroyed") makePassing(100);
        };
    }
    root->setNext(nullptr);
    EXPECT_EQ(Node::alive, before);
}

}  // namespace
}  // namespace nxTXN::test
