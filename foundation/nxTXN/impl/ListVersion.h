// A version of a list.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/nxTXN/RefCountedObject.h"

namespace nxTXN::impl {

/// One change of a list, which can be reversed.
struct ListChange {
    enum class Kind : std::uint8_t { inserted, erased, moved };

    Kind kind;
    std::size_t from;  ///< the index of the insertion or erasure, or the old index of a move
    std::size_t to;    ///< the new index of a move

    [[nodiscard]] ListChange inverse() const noexcept {
        switch (kind) {
            case Kind::inserted: return {Kind::erased, from, to};
            case Kind::erased: return {Kind::inserted, from, to};
            case Kind::moved: break;
        }
        return {kind, to, from};
    }
};

/// A node in the tree of a list's versions: each version differs from its parent by one change. The list holds the
/// present version, records hold those that undo, redo and abort restore; other versions exist only on paths between
/// these.
class ListVersion {
public:
    /// The first version.
    ListVersion() noexcept = default;
    /// The version after `change` is made to `parent`; keeps the change's object in memory.
    ListVersion(ListVersion& parent, ListChange const& change, RefCountedObject& object) noexcept;
    ListVersion(ListVersion const&) = delete;
    ListVersion& operator=(ListVersion const&) = delete;

    void ref() const noexcept { ++holders_; }
    void unref() const noexcept {
        if (--holders_ == 0) trim(const_cast<ListVersion*>(this));
    }

    /// Null for the oldest version needed, which has no change.
    [[nodiscard]] ListVersion* parent() const noexcept { return parent_; }
    [[nodiscard]] std::uint64_t depth() const noexcept { return depth_; }
    [[nodiscard]] ListChange const& change() const noexcept { return change_; }
    [[nodiscard]] RefCountedObject& object() const noexcept { return *object_; }

private:
    ~ListVersion();
    static void trim(ListVersion* version) noexcept;
    void leaveParent() noexcept;

    ListVersion* parent_ = nullptr;
    ListVersion* firstChild_ = nullptr;
    ListVersion* nextSibling_ = nullptr;
    RefCountedObject* object_ = nullptr;
    ListChange change_{};
    std::uint64_t depth_ = 0;
    mutable std::uint32_t holders_ = 0;
};

}  // namespace nxTXN::impl
