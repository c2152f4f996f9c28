// Compares two trees.
#include "tools/nxplist/Comparison.h"

#include <cstdint>
#include <set>
#include <utility>
#include <vector>

#include "plst/json.h"
#include "tools/nxplist/Walk.h"

namespace nxplist {
namespace {

using nxPLST::Item;

/// Two containers of the same type that are being compared.
struct OpenPair {
    Children first;
    Children second;
    std::uint64_t differencesBefore;
};

class Comparer {
public:
    Comparer(std::function<bool(std::string const&)> const& report, std::string (*spell)(Item const*))
        : report_(report), spell_(spell) {}

    void compare(Item const* first, Item const* second) {
        bool goOn = meet(first, second);
        while (goOn && !open_.empty()) goOn = step();
    }

private:
    /// Compares the current values of the innermost pair, and opens containers of the same type.
    bool meet(Item const* first, Item const* second) {
        bool const sameKind = first && second && first->type() == second->type();
        if (sameKind && isContainer(first)) {
            if (!equal_.contains({first, second})) {
                open_.push_back({Children(*first), Children(*second), differences_});
            }
            return true;
        }
        if (sameKind ? *first == *second : first == second) return true;
        std::string const where = open_.empty() ? "." : place(open_.back().first);
        return report(where + ": " + spell_(first) + " -> " + spell_(second));
    }

    /// Handles the next child of the innermost pair, or closes the pair. False if the report wants no more.
    bool step() {
        OpenPair& pair = open_.back();
        if (pair.first.done() && pair.second.done()) {
            close();
            return true;
        }
        int const order = keyOrder(pair);
        if (order < 0) return onlyIn("first", pair.first);
        if (order > 0) return onlyIn("second", pair.second);
        std::size_t const depth = open_.size();
        bool const goOn = meet(pair.first.item(), pair.second.item());
        if (open_.size() == depth) advance(open_.back());
        return goOn;
    }

    /// Items with several holders may occur many times: pairs known to be equal are not compared again.
    void close() {
        OpenPair const pair = open_.back();
        open_.pop_back();
        Item const& first = pair.first.container();
        Item const& second = pair.second.container();
        bool const areShared = first.referenceCount() > 1 && second.referenceCount() > 1;
        if (areShared && pair.differencesBefore == differences_) equal_.emplace(&first, &second);
        if (!open_.empty()) advance(open_.back());
    }

    bool report(std::string const& difference) {
        ++differences_;
        return report_(difference);
    }

    static void advance(OpenPair& pair) {
        pair.first.next();
        pair.second.next();
    }

    /// Negative if the next child is in the first container only, positive if in the second only.
    static int keyOrder(OpenPair const& pair) {
        if (pair.first.done()) return 1;
        if (pair.second.done()) return -1;
        if (pair.first.container().type() == nxPLST::ArrayType) return 0;
        return pair.first.key().compare(pair.second.key());
    }

    bool onlyIn(char const* which, Children& children) {
        bool const goOn = report(place(children) + ": only in the " + which + ": " + spell_(children.item()));
        children.next();
        return goOn;
    }

    /// The path of the current child of `children`, which belongs to the innermost pair.
    std::string place(Children const& children) const {
        std::string text;
        for (std::size_t i = 0; i + 1 < open_.size(); ++i) text += open_[i].first.step();
        return text + children.step();
    }

    std::function<bool(std::string const&)> const& report_;
    std::string (*spell_)(Item const*);
    std::vector<OpenPair> open_;
    std::set<std::pair<Item const*, Item const*>> equal_;
    std::uint64_t differences_ = 0;
};

}  // namespace

void compareTrees(Item const* first, Item const* second, std::function<bool(std::string const&)> const& report,
                  std::string (*spell)(Item const*)) {
    Comparer(report, spell).compare(first, second);
}

std::string inFull(Item const* item) {
    urString::CString text;
    if (!nxPLST::writeJson(text, ur::Reference<Item const>(item), {.indent = 0})) return "no JSON";
    return text;
}

std::string brief(Item const* item) {
    if (item && item->type() == nxPLST::ArrayType) {
        return "array of " + std::to_string(static_cast<nxPLST::Array const*>(item)->size());
    }
    if (item && item->type() == nxPLST::DictionaryType) {
        return "dictionary of " + std::to_string(static_cast<nxPLST::Dictionary const*>(item)->size());
    }
    return inFull(item);
}

}  // namespace nxplist
