// Walks over whole trees with stacks of their own.
#include "plst/impl/treeWalk.h"

#include <memory>
#include <new>
#include <typeinfo>
#include <utility>

#include "foundation/ur/NodeSource.h"
#include "plst/Bool.h"
#include "plst/Double.h"
#include "plst/String.h"
#include "plst/impl/ItemSource.h"

namespace nxPLST::impl {
namespace {

bool isContainer(Item const& item) { return item.type() == ArrayType || item.type() == DictionaryType; }

/// How deep a walk recurses before it keeps containers on a list. Leaves room on a 512 KiB stack under the address
/// sanitizer, whose frames are many times larger.
constexpr int recursionLimit = 50;

// Copying ------------------------------------------------------------------------------------------------------

/// Copies trees node by node in the order in which they are read later, so that neighbours lie together.
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
    /// A container below the recursion limit, and the still empty copy that is to receive copies of its children.
    struct Deep {
        Item const* source;
        Item* copy;
    };

    ur::Reference<Item> copyOf(Item const* source) {
        if (!source) return nullptr;
        switch (source->type()) {
            case BoolType: return items_.make<Bool>(static_cast<Bool const*>(source)->value());
            case DoubleType: return items_.make<Double>(static_cast<Double const*>(source)->value());
            case StringType: return items_.make<String>(static_cast<String const*>(source)->value());
            case ArrayType: return filled(*source, items_.make<Array>());
            case DictionaryType: return filled(*source, items_.make<Dictionary>());
            default: return source->clone();
        }
    }

    /// Not inlined, so that scalars are copied without saving registers for it.
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

class Dismantling;
[[gnu::tls_model("initial-exec")]] constinit thread_local Dismantling* current = nullptr;

/// The dismantling of one tree, kept by the outermost destructor on its own stack.
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
    /// Lets an item go. The storage of those that nobody else holds is given back with that of their like.
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

    /// Not inlined, so that scalars are dropped without saving registers for it.
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

    /// What lies too deep waits in a list, as long as there is memory for that.
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
