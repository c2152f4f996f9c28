// Finds and changes one place of a tree.
#include "tools/nxplist/Edit.h"

#include <type_traits>
#include <utility>

#include "plst/casts.h"

namespace nxplist {
namespace {

using nxPLST::Array;
using nxPLST::Dictionary;
using nxPLST::Item;
using nxPLST::Path;
using Slot = ur::Reference<Item>;

/// The position for an index, which may count from the end; `size` if there is no such position.
std::size_t position(Array const& array, long index) {
    auto const size = static_cast<long>(array.array().size());
    if (index < 0) index += size;
    return static_cast<std::size_t>(index < 0 || index > size ? size : index);
}

/// Copies the container in the slot if it is shared.
template <class Container>
Container& own(Slot& slot) {
    if (slot->referenceCount() > 1) {
        auto copy = ur::make<Container>();
        if constexpr (std::is_same_v<Container, Array>) {
            copy->array() = static_cast<Array const&>(*slot).array();
        } else {
            copy->dictionary() = static_cast<Dictionary const&>(*slot).dictionary();
        }
        slot = std::move(copy);
    }
    return static_cast<Container&>(*slot);
}

/// The slot of an existing child, after copying a shared container; null if there is none.
Slot* childSlot(Slot& parent, Path::value_type const& step) {
    if (auto const* const key = std::get_if<std::string>(&step)) {
        if (!nxPLST::asDictionary(parent)) return nullptr;
        auto& members = own<Dictionary>(parent).dictionary();
        auto const member = members.find(std::string_view(*key));
        return member == members.end() ? nullptr : &member->second;
    }
    if (!nxPLST::asArray(parent)) return nullptr;
    auto& array = own<Array>(parent);
    std::size_t const at = position(array, std::get<long>(step));
    return at < array.array().size() ? &array.array()[at] : nullptr;
}

/// The slot of the container to which the path's last step applies.
Slot* parentSlot(Slot& root, Path const& path, std::string& error) {
    Slot* slot = &root;
    std::string reached;
    for (std::size_t i = 0; i + 1 < path.size(); ++i) {
        reached += nxPLST::stepText(path[i]);
        slot = childSlot(*slot, path[i]);
        if (!slot) {
            error = "nothing at " + reached;
            return nullptr;
        }
    }
    return slot;
}

bool refuse(std::string& error, char const* what, Path const& path) {
    std::string text;
    for (auto const& step : path) text += nxPLST::stepText(step);
    error = what + text;
    return false;
}

}  // namespace

bool setAt(Slot& root, Path const& path, Slot value, std::string& error) {
    if (path.empty()) {
        root = std::move(value);
        return true;
    }
    Slot* const parent = parentSlot(root, path, error);
    if (!parent) return false;
    if (auto const* const key = std::get_if<std::string>(&path.back())) {
        if (!nxPLST::asDictionary(*parent)) return refuse(error, "no dictionary around ", path);
        own<Dictionary>(*parent).insert(*key, std::move(value));
        return true;
    }
    if (!nxPLST::asArray(*parent)) return refuse(error, "no array around ", path);
    long const index = std::get<long>(path.back());
    if (Slot* const element = childSlot(*parent, path.back())) {
        *element = std::move(value);
        return true;
    }
    auto& array = own<Array>(*parent);
    if (index != array.size()) return refuse(error, "nothing at ", path);
    array.insert(std::move(value));
    return true;
}

bool deleteAt(Slot& root, Path const& path, std::string& error) {
    if (path.empty()) {
        error = "the whole tree cannot be deleted";
        return false;
    }
    Slot* const parent = parentSlot(root, path, error);
    if (!parent) return false;
    if (!childSlot(*parent, path.back())) return refuse(error, "nothing at ", path);
    if (auto const* const key = std::get_if<std::string>(&path.back())) {
        own<Dictionary>(*parent).dictionary().erase(urString::CString(*key));
    } else {
        auto& elements = own<Array>(*parent).array();
        auto const at = position(own<Array>(*parent), std::get<long>(path.back()));
        elements.erase(elements.begin() + static_cast<std::ptrdiff_t>(at));
    }
    return true;
}

}  // namespace nxplist
