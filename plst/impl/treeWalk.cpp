// Walks over whole trees with explicit stacks.
#include "plst/impl/treeWalk.h"

#include <cmath>
#include <memory>
#include <new>
#include <set>
#include <typeinfo>
#include <utility>

#include "foundation/ur/NodeSource.h"
#include "plst/impl/ChildWalk.h"
#include "plst/impl/ItemSource.h"
#include "plst/visit.h"

namespace nxPLST::impl {
namespace {

bool isContainer(Item const& item) { return item.type() == ArrayType || item.type() == DictionaryType; }

/// The depth up to which a walk recurses; deeper containers go to a list. Fits a 512 KiB stack under the address
/// sanitizer, whose frames are many times larger.
constexpr int recursionLimit = 50;

// Copying ------------------------------------------------------------------------------------------------------

/// Copies trees node by node in reading order, so that neighbours lie together.
class TreeCopy {
public:
    ur::Reference<Item> run(Item const& root) {
        ur::Reference<Item> copy = copyOf(&root);
        while (!deep_.empty()) {
            Deep const work = deep_.back();
            deep_.pop_back();
            copyChildren(*work.source, *work.copy);
        }
        return copy;
    }

private:
    /// A container below the recursion limit, and its still empty copy.
    struct Deep {
        Item const* source;
        Item* copy;
    };

    ur::Reference<Item> copyOf(Item const* source) {
        if (!source) return nullptr;
        ur::Reference<Item> copy = visit(
            *source, [this](Array const& array) { return filled(array, items_.make<Array>()); },
            [this](Dictionary const& dictionary) { return filled(dictionary, items_.make<Dictionary>()); },
            [this](auto const& scalar) -> ur::Reference<Item> {
                return items_.make<std::remove_cvref_t<decltype(scalar)>>(scalar.value());
            });
        if (!copy) copy = source->clone();  // of an unknown kind
        return copy;
    }

    /// Not inlined, so that scalars are copied without saving registers for this.
    [[gnu::noinline]] ur::Reference<Item> filled(Item const& source, ur::Reference<Item> copy) {
        if (depth_ == recursionLimit) {
            deep_.push_back({&source, copy.get()});
        } else {
            ++depth_;
            copyChildren(source, *copy);
            --depth_;
        }
        return copy;
    }

    void copyChildren(Item const& source, Item& copy) {
        if (source.type() == ArrayType) {
            auto& to = static_cast<Array&>(copy).array();
            auto const& from = static_cast<Array const&>(source).array();
            to.reserve(from.size());
            for (auto const& child : from) to.push_back(copyOf(child.get()));
        } else {
            auto& to = static_cast<Dictionary&>(copy).dictionary();
            to.copyWith(static_cast<Dictionary const&>(source).dictionary(),
                        [this](ur::Reference<Item> const& child) { return copyOf(child.get()); });
        }
    }

    ItemSource items_;
    int depth_ = 0;
    std::vector<Deep> deep_;
};

// Comparing ----------------------------------------------------------------------------------------------------

bool sameNumber(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

bool equalScalars(Item const& a, Item const& b) {
    if (a.type() != b.type()) return false;
    return visit(
        a, [&](Bool const& truth) { return truth.value() == static_cast<Bool const&>(b).value(); },
        [&](Double const& number) { return sameNumber(number.value(), static_cast<Double const&>(b).value()); },
        [&](String const& text) { return text.value() == static_cast<String const&>(b).value(); },
        [&](Item const&) { return a.congruent(b); });
}

/// Compares pairs of children in order and stops at the first difference. `agreeing` compares scalars.
class TreeComparison {
public:
    using Scalars = bool (*)(Item const& a, Item const& b);

    TreeComparison(Scalars agreeing, bool looksOnce) : agreeing_(agreeing), looksOnce_(looksOnce) {}

    bool run(Item const& a, Item const& b) {
        if (!agree(&a, &b)) return false;
        while (!open_.empty())
            if (!nextAgree()) return false;
        return true;
    }

private:
    /// The remaining children of two containers of one class and size: at least one.
    struct Pair {
        ChildWalk a, b;
    };

    bool nextAgree() {
        Pair& pair = open_.back();
        if (pair.a.inDictionary() && pair.a.members.key() != pair.b.members.key()) return false;
        Item const* const a = taken(pair.a);
        Item const* const b = taken(pair.b);
        if (pair.a.atEnd()) open_.pop_back();
        return agree(a, b);
    }
    static Item const* taken(ChildWalk& walk) {
        return walk.inDictionary() ? taken(walk.members) : taken(walk.elements);
    }
    template <class Walk>
    static Item const* taken(Walk& walk) {
        Item const* const item = walk.item();
        walk.advance();
        return item;
    }

    /// Two containers agree so far if their classes and sizes do; their children follow.
    bool agree(Item const* a, Item const* b) {
        if (!a || !b) return a == b;
        if (!isContainer(*a)) return agreeing_(*a, *b);
        if (typeid(*a) != typeid(*b)) return false;
        if (looksOnce_ && comesAgain(*a, *b)) return true;
        return a->type() == ArrayType ? entered(static_cast<Array const&>(*a), static_cast<Array const&>(*b))
                                      : entered(static_cast<Dictionary const&>(*a), static_cast<Dictionary const&>(*b));
    }
    /// The comparison ends at a difference, so all opened pairs are equal so far. Items with one holder occur once.
    bool comesAgain(Item const& a, Item const& b) {
        if (&a == &b) return true;
        if (a.referenceCount() == 1 && b.referenceCount() == 1) return false;
        return !met_.emplace(&a, &b).second;
    }
    bool entered(Array const& a, Array const& b) { return entered(a, b, a.array().size() == b.array().size()); }
    bool entered(Dictionary const& a, Dictionary const& b) {
        return entered(a, b, a.dictionary().size() == b.dictionary().size());
    }
    template <class Container>
    bool entered(Container const& a, Container const& b, bool sizesAgree) {
        if (sizesAgree && !a.empty()) open_.push_back({ChildWalk(a), ChildWalk(b)});
        return sizesAgree;
    }

    Scalars const agreeing_;
    bool const looksOnce_;
    std::vector<Pair> open_;
    std::set<std::pair<Item const*, Item const*>> met_;
};

// Destroying ---------------------------------------------------------------------------------------------------

class Dismantling;
[[gnu::tls_model("initial-exec")]] constinit thread_local Dismantling* current = nullptr;

/// The destruction of one tree; lives on the stack of the outermost destructor.
class Dismantling {
public:
    Dismantling() noexcept { current = this; }
    Dismantling(Dismantling const&) = delete;
    Dismantling& operator=(Dismantling const&) = delete;
    ~Dismantling() {
        while (!deep_.empty()) {
            ur::Reference<Item> item = std::move(deep_.back());
            deep_.pop_back();
            drop(item);
        }
        current = nullptr;
    }

    void clear(ur::vector<ur::Reference<Item>>& children) noexcept {
        ++depth_;
        for (auto& child : children) drop(child);
        --depth_;
        children.clear();
    }

    void clear(Dictionary::Map& children) noexcept {
        ++depth_;
        children.clear([this](ur::Reference<Item>& child) { drop(child); });
        --depth_;
    }

private:
    /// Releases an item. Frees the storage of items without other holders in batches.
    void drop(ur::Reference<Item>& holder) noexcept {
        if (!holder || holder->referenceCount() > 1) return holder.reset();
        switch (holder->type()) {
            case BoolType: return end(static_cast<Bool*>(holder.release()), scalars_);
            case DoubleType: return end(static_cast<Double*>(holder.release()), scalars_);
            case StringType: return end(static_cast<String*>(holder.release()), texts_);
            case ArrayType:
            case DictionaryType: return dropContainer(holder);
            default: return holder.reset();
        }
    }

    template <class Kind>
    static void end(Kind* item, ur::NodeBatch& nodes) noexcept {
        std::destroy_at(item);
        nodes.add(item);
    }

    /// Not inlined, so that scalars are dropped without saving registers for this.
    [[gnu::noinline]] void dropContainer(ur::Reference<Item>& holder) noexcept {
        if (setAside(holder)) return;
        Item* const item = holder.release();
        if (item->type() == ArrayType) {
            clear(static_cast<Array*>(item)->array());
            end(static_cast<Array*>(item), arrays_);
        } else {
            clear(static_cast<Dictionary*>(item)->dictionary());
            end(static_cast<Dictionary*>(item), scalars_);
        }
    }

    /// Containers that are too deep wait in a list, as long as there is memory for it.
    bool setAside(ur::Reference<Item>& container) noexcept {
        if (depth_ < recursionLimit) return false;
        try {
            deep_.push_back(std::move(container));
            return true;
        } catch (std::bad_alloc const&) {
            return false;
        }
    }

    static_assert(sizeof(Bool) == sizeof(Double) && sizeof(Dictionary) == sizeof(Double));

    ur::NodeBatch scalars_;  ///< and dictionaries
    ur::NodeBatch texts_;
    ur::NodeBatch arrays_;
    int depth_ = 0;
    std::vector<ur::Reference<Item>> deep_;
};

template <class Children>
void dismantleAny(Children& children) noexcept {
    if (children.empty()) return;
    if (current) return current->clear(children);
    Dismantling().clear(children);
}

}  // namespace

ur::Reference<Item> cloneTree(Item const& root) { return TreeCopy().run(root); }

bool congruentTrees(Item const& a, Item const& b) {
    return TreeComparison([](Item const& x, Item const& y) { return x.congruent(y); }, false).run(a, b);
}
bool equalTrees(Item const& a, Item const& b) { return TreeComparison(equalScalars, true).run(a, b); }

void dismantle(ur::vector<ur::Reference<Item>>& children) noexcept { dismantleAny(children); }
void dismantle(Dictionary::Map& children) noexcept { dismantleAny(children); }

}  // namespace nxPLST::impl
