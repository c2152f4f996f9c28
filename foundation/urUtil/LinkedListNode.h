// Intrusive nodes of doubly linked lists.
#pragma once

#include "foundation/ur/Export.h"

namespace urUtil {

/// Base of a class T whose objects are linked into a list: `class Page : public LinkedListNode<Page>`.
///
/// Both links are null while the node is in no list. A plain node made a sentinel represents a circular list: its next
/// is the head and its previous the tail; in an empty list both are the sentinel itself. The list owns nothing. A copy
/// gets the links of its original, but no neighbour points to it; so the destructor does not change the links, and a
/// node must be unlinked before it is destroyed.
template <class T>
class NX_API LinkedListNode {
public:
    LinkedListNode() = default;
    LinkedListNode(LinkedListNode const&) = default;
    LinkedListNode& operator=(LinkedListNode const&) = default;
    virtual ~LinkedListNode() = default;

    [[nodiscard]] LinkedListNode* next() const noexcept { return next_; }
    [[nodiscard]] LinkedListNode* previous() const noexcept { return previous_; }
    /// Requires: this is the base of a T, not a sentinel.
    [[nodiscard]] T* object() noexcept { return static_cast<T*>(this); }

    /// Makes this an empty circular list. Requires: in no list.
    void makeSentinel() noexcept { next_ = previous_ = this; }

    /// Inserts this node directly before `position`; before a sentinel it becomes the tail. Requires: in no list.
    void insertBefore(LinkedListNode& position) noexcept { join(position.previous_, &position); }
    /// Inserts this node directly after `position`; after a sentinel it becomes the head. Requires: in no list.
    void insertAfter(LinkedListNode& position) noexcept { join(&position, position.next_); }
    /// Joins the neighbours and sets both links to null. No effect when in no list.
    void unlink() noexcept {
        if (previous_) previous_->next_ = next_;
        if (next_) next_->previous_ = previous_;
        next_ = previous_ = nullptr;
    }
    /// Moves this node directly before `position`. Requires: both are in one circular list and different.
    void moveBefore(LinkedListNode& position) noexcept {
        previous_->next_ = next_;
        next_->previous_ = previous_;
        next_ = &position;
        previous_ = position.previous_;
        previous_->next_ = this;
        position.previous_ = this;
    }

private:
    /// Either may be null: the open end of a list without a sentinel.
    void join(LinkedListNode* previous, LinkedListNode* next) noexcept {
        previous_ = previous;
        next_ = next;
        if (previous) previous->next_ = this;
        if (next) next->previous_ = this;
    }

    LinkedListNode* next_ = nullptr;
    LinkedListNode* previous_ = nullptr;
};

}  // namespace urUtil
