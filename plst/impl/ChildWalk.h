// Iterates over the children of one container, for tree walks that keep their own stacks.
#pragma once

#include "plst/Array.h"
#include "plst/Dictionary.h"

namespace nxPLST::impl {

/// Points to an element of an array, or to its end. Invalid when the array changes.
class ElementWalk {
public:
    ElementWalk() noexcept = default;
    explicit ElementWalk(Array const& array) noexcept
        : element_(array.array().data()), end_(element_ + array.array().size()) {}

    [[nodiscard]] bool atEnd() const noexcept { return element_ == end_; }
    /// May be null. Requires: not at the end.
    [[nodiscard]] Item const* item() const noexcept { return element_->get(); }
    void advance() noexcept { ++element_; }

private:
    ur::Reference<Item> const* element_ = nullptr;
    ur::Reference<Item> const* end_ = nullptr;
};

/// Points to a member of a dictionary, or to its end. Invalid when the dictionary changes.
class MemberWalk {
public:
    MemberWalk() noexcept = default;
    explicit MemberWalk(Dictionary const& dictionary) noexcept
        : map_(&dictionary.dictionary()), member_(map_->begin()) {}

    /// False without a dictionary.
    explicit operator bool() const noexcept { return map_; }
    [[nodiscard]] bool atEnd() const noexcept { return member_ == map_->end(); }
    [[nodiscard]] urString::CString const& key() const noexcept { return member_->first; }
    /// May be null. Requires: not at the end.
    [[nodiscard]] Item const* item() const noexcept { return member_->second.get(); }
    void advance() noexcept { ++member_; }

private:
    Dictionary::Map const* map_ = nullptr;
    Dictionary::Map::const_iterator member_;
};

/// The remaining children of an open container.
struct ChildWalk {
    ElementWalk elements;
    MemberWalk members;

    ChildWalk() noexcept = default;
    explicit ChildWalk(Array const& array) noexcept : elements(array) {}
    explicit ChildWalk(Dictionary const& dictionary) noexcept : members(dictionary) {}

    [[nodiscard]] bool inDictionary() const noexcept { return static_cast<bool>(members); }
    [[nodiscard]] bool atEnd() const noexcept { return inDictionary() ? members.atEnd() : elements.atEnd(); }
};

}  // namespace nxPLST::impl
