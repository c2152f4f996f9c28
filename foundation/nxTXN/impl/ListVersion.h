// What a list was at one time.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/nxTXN/RefCountedObject.h"

namespace nxTXN::impl {

/// One change of a list, and how to take it back.
struct ListChange {
    enum class Kind : std::uint8_t { inserted, erased, moved };

    Kind kind;
    std::size_t from;  ///< the index inserted at, erased at or moved from
    std::size_t to;    ///< moved to: the index afterwards

    [[nodiscard]] ListChange inverse() const noexcept {
        switch (kind) {
            case Kind::inserted: return {Kind::erased, from, to};
            case Kind::erased: return {Kind::inserted, from, to};
            case Kind::moved: break;
        }
        return {kind, to, from};
    }
};

/// A node of the tree of what a list has been: each version differs from its parent by one change. The list holds the
/// present one, records hold those that undo, redo and abort lead to, and others exist only as ways between these.
class ListVersion {
public:
    /// The first one.
    ListVersion() noexcept = default;
    /// What becomes of `parent` by the change, whose object is kept in memory meanwhile.
    ListVersion(ListVersion& parent, ListChange const& change, RefCountedObject& object) noexcept;
    ListVersion(ListVersion const&) = delete;
    ListVersion& operator=(ListVersion const&) = delete;

    void ref() const noexcept { ++holders_; }
    void unref() const noexcept {
        if (--holders_ == 0) trim(const_cast<ListVersion*>(this));
    }

    /// Null for the oldest one that is needed, which has no change.
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
