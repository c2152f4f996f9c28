// The audit's report for each possible fault.
#include "krcache/impl/ManagerImpl.h"
#include "krcache/tests/TestKeys.h"

namespace urKRCache {

using ur::make;
using ur::Reference;

/// A cache with a resource in each state, and functions that break it. Causing a fault again undoes it.
struct CacheProbe : test::Cache {
    using Node = urUtil::LinkedListNode<Shim>;
    struct Fault {
        char const* what;
        std::function<void()> toggle;
    };

    CacheProbe() {
        auto const early = make<test::Key>(1), late = make<test::Key>(4);
        early->onVisit = [&](KeyVisitor& visitor) { visitor.visit((child = shim(make<test::Key>(2))).get()); };
        parent = shim(early), other = shim(make<test::Key>(3)), late->sources = {other};
        user = shim(late), paged = shim(make<test::Key>(5)), gone = shim(make<test::Key>(6));
        manager.removeResource(gone), manager.startInteraction(), manager.setSerializable(paged);
        for (auto const& used : {parent, child, other, user, paged}) access(used);
        manager.clearResource(paged), manager.lockResource(child);
        broken = static_cast<Node&>(*parent);
    }
    [[nodiscard]] Shim::Link& up() const { return child->relatives_->parents[0]; }
    [[nodiscard]] Shim::Link& down() const { return parent->relatives_->children[0]; }
    [[nodiscard]] PageFileEntry& page() const { return *paged->pageEntry_; }
    [[nodiscard]] PageFileEntry& free() const { return const_cast<PageFileEntry&>(*file.first()); }
    template <class Set, class T>
    static void flip(Set& set, T* member) {
        if (set.erase(member) == 0) set.insert(member);
    }

    std::vector<Fault> faults() {
        return {
            {"#0: is in the table without a manager or a key", [&] { std::swap(parent->manager_, noManager); }},
            {"#0: is in the table without a manager or a key", [&] { parent->key_.swap(noKey); }},
            {"#0: is not found by its hash", [&] { parent->hash_ ^= 1U << 31; }},
            {"#2: is still being removed", [&] { std::swap(other->removal_, clearing); }},
            {"#4: has a page but no resource", [&] { paged->resource_.swap(noResource); }},
            {"#4: has a page that is free", [&] { page().inUse_ = !page().inUse_; }},
            {"#2: has been unlocked more often than locked", [&] { other->lockCount_ = ~other->lockCount_; }},
            {"#2: is listed for eviction but must not be evicted", [&] { other->lockCount_ ^= 1; }},
            {"#1: may be evicted but is not listed", [&] { child->lockCount_ ^= 1; }},
            {"#2: has lost a reference of its manager", [&] { std::swap(other->strongCount_, one); }},
            {"#2: differs from the set of hot ones", [&] { other->hot_ = !other->hot_; }},
            {"#0: has lost a child, but lives on", [&] { std::swap(down().shim, noShim); }},
            {"#0: is not a parent of its child", [&] { up().mirror ^= 1; }},
            {"#0: is not a parent of its child", [&] { down().mirror ^= 1; }},
            {"#0: has a child that has been removed", [&] { std::swap(child->manager_, noManager); }},
            {"#2: is not a child of its parent", [&] { user->relatives_->children[0].mirror ^= 1; }},
            {"#1: miscounts its parents", [&] { child->relatives_->cutParents ^= 1; }},
            {"resources is broken", [&] { std::swap(static_cast<Node&>(*other), broken); }},
            {"resources is miscounted", [&] { stray.next() ? stray.unlink() : stray.insertBefore(*parent); }},
            {"the list has shims that are not in the table",
             [&] { gone->next() ? impl.lru_.remove(*gone) : impl.lru_.append(*gone); }},
            {"the memory used is not the sum", [&] { impl.budget_.used_.total ^= 1; }},
            {"the residential bytes are not their sum", [&] { impl.budget_.residentialUsed_.resized ^= 1; }},
            {"the locked bytes are not their sum", [&] { impl.accountant_.lockedSize_ ^= 1; }},
            {"the hot set has shims that are not in the table", [&] { flip(impl.accountant_.hotSet_, gone.get()); }},
            {"hits are watched for nobody, or not at all", [&] { impl.isWatched_ = !impl.isWatched_; }},
            {"the peak is below", [&] { std::swap(impl.budget_.peak_, nothing); }},
            {"chunks leave a gap", [&] { free().offset_ ^= 1; }},
            {"more is written to a chunk than it holds", [&] { page().written_ ^= 1U << 31; }},
            {"free neighbours are not merged",
             [&] {
                 paged->resource_.swap(noResource), std::swap(paged->pageEntry_, noPage);
                 bool& inUse = const_cast<PageFileEntry&>(*file.after(free())).inUse_;
                 inUse = !inUse;
             }},
            {"a free chunk is not in the free set", [&] { flip(file.freeEntries_, &free()); }},
            {"the first chunk does not start the file", [&] { page().offset_ ^= 1, free().offset_ ^= 1; }},
            {"the free set has chunks that are not free", [&] { flip(file.freeEntries_, &page()); }},
            {"the set of chunks in use has others", [&] { flip(file.usedEntries_, &free()); }},
            {"differ in number", [&] { paged->resource_.swap(noResource), std::swap(paged->pageEntry_, noPage); }},
        };
    }

    ManagerImpl& impl = *manager.impl_;
    PageFile& file = impl.pager_.file_;
    Reference<Shim> parent, child, other, user, paged, gone;
    Manager* noManager = nullptr;
    Reference<KeyData> noKey;
    Reference<Resource> noResource;
    Shim::Removal clearing = Shim::Removal::clear;
    Shim* noShim = nullptr;
    PageFileEntry* noPage = nullptr;
    std::int32_t one = 1;
    std::uint64_t nothing = 0;
    Node broken, stray;
};

namespace {

TEST(Audit, NamesWhatIsWrong) {
    CacheProbe probe;
    for (CacheProbe::Fault const& fault : probe.faults()) {
        ASSERT_EQ(probe.manager.audit(), "");
        fault.toggle();
        EXPECT_NE(probe.manager.audit().view().find(fault.what), std::string_view::npos)
            << fault.what << ": " << probe.manager.audit().view();
        fault.toggle();
    }
    EXPECT_EQ(probe.manager.audit(), "");
}

}  // namespace
}  // namespace urKRCache
