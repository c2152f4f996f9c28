// Walks over whole trees with stacks of their own.
#include "plst/impl/treeWalk.h"

#include <new>
#include <typeinfo>
#include <utility>

#include "plst/Bool.h"
#include "plst/Double.h"
#include "plst/String.h"

namespace nxPLST::impl {
namespace {

bool isContainer(Item const& item) { return item.type() == ArrayType || item.type() == DictionaryType; }

// Copying ------------------------------------------------------------------------------------------------------

/// A container and the still empty copy that is to receive copies of its children.
struct Copying {
    Item const* source;
    Item* copy;
};

ur::Reference<Item> copyOne(Item const* source, std::vector<Copying>& pending) {
    if (!source) return nullptr;
    ur::Reference<Item> copy;
    switch (source->type()) {
        case BoolType: return ur::make<Bool>(static_cast<Bool const*>(source)->value());
        case DoubleType: return ur::make<Double>(static_cast<Double const*>(source)->value());
        case StringType: return ur::make<String>(static_cast<String const*>(source)->value());
        case ArrayType: copy = ur::make<Array>(); break;
        case DictionaryType: copy = ur::make<Dictionary>(); break;
        default: return source->clone();
    }
    pending.push_back({source, copy.get()});
    return copy;
}

void copyChildren(Copying const& work, std::vector<Copying>& pending) {
    if (work.source->type() == ArrayType) {
        auto const& from = static_cast<Array const*>(work.source)->array();
        auto& to = static_cast<Array*>(work.copy)->array();
        to.reserve(from.size());
        for (auto const& child : from) to.push_back(copyOne(child.get(), pending));
    } else {
        auto& to = static_cast<Dictionary*>(work.copy)->dictionary();
        to.reserve(static_cast<Dictionary const*>(work.source)->dictionary().size());
        for (auto const& [key, child] : static_cast<Dictionary const*>(work.source)->dictionary()) {
            to.emplaceLast(key, copyOne(child.get(), pending));
        }
    }
}

// Comparing ----------------------------------------------------------------------------------------------------

struct Pair {
    Item const* a;
    Item const* b;
};

/// Whether two children agree as far as they can be judged alone; two containers go onto `pending`.
bool agree(Item const* a, Item const* b, std::vector<Pair>& pending) {
    if (!a || !b) return a == b;
    if (!isContainer(*a)) return a->congruent(*b);
    if (typeid(*a) != typeid(*b)) return false;
    pending.push_back({a, b});
    return true;
}

bool childrenAgree(Array const& a, Array const& b, std::vector<Pair>& pending) {
    if (a.array().size() != b.array().size()) return false;
    for (std::size_t i = 0; i < a.array().size(); ++i) {
        if (!agree(a.array()[i].get(), b.array()[i].get(), pending)) return false;
    }
    return true;
}

bool childrenAgree(Dictionary const& a, Dictionary const& b, std::vector<Pair>& pending) {
    if (a.dictionary().size() != b.dictionary().size()) return false;
    auto other = b.dictionary().begin();
    for (auto const& [key, child] : a.dictionary()) {
        if (key != other->first || !agree(child.get(), other->second.get(), pending)) return false;
        ++other;
    }
    return true;
}

// Destroying ---------------------------------------------------------------------------------------------------

/// Leaves room on a 512 KiB stack under the address sanitizer, whose frames are many times larger.
constexpr int recursionLimit = 50;

/// The dismantling of one tree, kept by the outermost destructor on its own stack.
struct Dismantling {
    int depth = 0;
    std::vector<ur::Reference<Item>> deep;
};

constinit thread_local Dismantling* current = nullptr;

bool goesWithItsHolder(Item const* item) { return item && item->referenceCount() == 1 && isContainer(*item); }

void setAside(ur::vector<ur::Reference<Item>>& children, std::vector<ur::Reference<Item>>& deep) {
    for (auto& child : children) {
        if (goesWithItsHolder(child.get())) deep.push_back(std::move(child));
    }
}

void setAside(Dictionary::Map& children, std::vector<ur::Reference<Item>>& deep) {
    for (auto& [key, child] : children) {
        if (goesWithItsHolder(child.get())) deep.push_back(std::move(child));
    }
}

template <class Children>
void dismantleWithin(Dismantling& dismantling, Children& children) noexcept {
    if (dismantling.depth >= recursionLimit) {
        try {
            setAside(children, dismantling.deep);
        } catch (std::bad_alloc const&) {
            // No memory for the list: what could not be set aside goes by recursion after all.
        }
    }
    ++dismantling.depth;
    children.clear();
    --dismantling.depth;
}

template <class Children>
void dismantleAny(Children& children) noexcept {
    if (children.empty()) return;
    if (current) return dismantleWithin(*current, children);
    Dismantling dismantling;
    current = &dismantling;
    dismantleWithin(dismantling, children);
    while (!dismantling.deep.empty()) {
        ur::Reference<Item> item = std::move(dismantling.deep.back());
        dismantling.deep.pop_back();
        item.reset();
    }
    current = nullptr;
}

}  // namespace

ur::Reference<Item> cloneTree(Item const& root) {
    std::vector<Copying> pending;
    ur::Reference<Item> copy = copyOne(&root, pending);
    while (!pending.empty()) {
        Copying const work = pending.back();
        pending.pop_back();
        copyChildren(work, pending);
    }
    return copy;
}

bool congruentTrees(Item const& a, Item const& b) {
    std::vector<Pair> pending;
    if (!agree(&a, &b, pending)) return false;
    while (!pending.empty()) {
        Pair const pair = pending.back();
        pending.pop_back();
        bool const same = pair.a->type() == ArrayType ? childrenAgree(static_cast<Array const&>(*pair.a),
                                                                      static_cast<Array const&>(*pair.b), pending)
                                                      : childrenAgree(static_cast<Dictionary const&>(*pair.a),
                                                                      static_cast<Dictionary const&>(*pair.b), pending);
        if (!same) return false;
    }
    return true;
}

void dismantle(ur::vector<ur::Reference<Item>>& children) noexcept { dismantleAny(children); }
void dismantle(Dictionary::Map& children) noexcept { dismantleAny(children); }

}  // namespace nxPLST::impl
