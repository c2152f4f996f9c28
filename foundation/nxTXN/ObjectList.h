// An ordered list of objects whose changes can be undone.
#pragma once

#include <concepts>
#include <cstddef>
#include <iterator>
#include <optional>
#include <span>
#include <utility>

#include "foundation/nxTXN/ObjectListBase.h"
#include "foundation/urRTB/Signal.h"

namespace nxTXN {

/// The objects of a document in their order: layers, joints, the members of a group.
///
///     class Group : public nxTXN::RefCountedObject {
///         ...
///         nxTXN::ObjectList<Shape> shapes{*txnManager()};
///     };
///     group->shapes.append(ur::make<Shape>(manager));
///
/// The list records itself: each change is one of the transaction that is open, and costs a few hundred bytes of
/// history however long the list is. It holds a reference to each of its objects, which are of its own manager; one
/// object may be in it at several places. Only the objects' places are the list's affair, their own changes are theirs.
///
/// Signals come when a change has been made: at once, and after undo, redo and abort when the whole step is in place,
/// one for each change. Who applies them to a list of his own, in the order in which they come, has the same list. An
/// erased object lives until all have been told. A listener may change or destroy the list: what it changes is told
/// after what is being told. What listeners throw leaves the call that made the change, or is the hook error of the
/// undo, once all is told.
///
/// Name the list as a field of its owner (`serializer.field(shapes)`), so that groups that contain each other are taken
/// apart with their manager. One thread.
template <class T>
class ObjectList final : public ObjectListBase {
public:
    explicit ObjectList(Manager& manager) : ObjectListBase(manager) {
        static_assert(std::derived_from<T, RefCountedObject>,
                      "the objects of an nxTXN::ObjectList derive from nxTXN::RefCountedObject");
    }
    /// With pieces of so many elements, for tests.
    ObjectList(Manager& manager, std::size_t mostInPiece) : ObjectListBase(manager, mostInPiece) {}

    /// False, and nothing changes, for null, for an object of another manager, and beyond the end.
    bool insert(std::size_t index, ur::Reference<T> const& object) { return insertObject(index, object.get()); }
    bool append(ur::Reference<T> const& object) { return insert(size(), object); }

    /// Requires: there is one.
    [[nodiscard]] T& operator[](std::size_t index) const noexcept { return *begin(index); }
    /// Null beyond the end.
    [[nodiscard]] T* at(std::size_t index) const noexcept { return index < size() ? &(*this)[index] : nullptr; }
    /// Where the object is first, found by looking at one after the other.
    [[nodiscard]] std::optional<std::size_t> indexOf(T const& object) const noexcept {
        for (auto i = begin(); i != end(); ++i) {
            if (&*i == &object) return i.index();
        }
        return std::nullopt;
    }

    /// Invalid from the next change on.
    class Iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = T*;
        using reference = T&;

        Iterator() noexcept = default;
        T& operator*() const noexcept { return static_cast<T&>(*run_.front()); }
        T* operator->() const noexcept { return &**this; }
        Iterator& operator++() noexcept {
            ++index_;
            run_ = run_.subspan(1);
            if (run_.empty()) run_ = list_->run(index_);
            return *this;
        }
        Iterator operator++(int) noexcept {
            Iterator const before = *this;
            ++*this;
            return before;
        }
        bool operator==(Iterator const& other) const noexcept { return index_ == other.index_; }
        [[nodiscard]] std::size_t index() const noexcept { return index_; }

    private:
        friend class ObjectList;
        Iterator(ObjectList const& list, std::size_t index) noexcept
            : list_(&list), run_(list.run(index)), index_(index) {}

        ObjectList const* list_ = nullptr;
        std::span<Element const> run_;
        std::size_t index_ = 0;
    };
    using iterator = Iterator;
    using const_iterator = Iterator;
    [[nodiscard]] Iterator begin() const noexcept { return begin(0); }
    [[nodiscard]] Iterator end() const noexcept { return begin(size()); }

    /// The index and the object.
    using Signal = urRTB::Signal<std::size_t, T&>;
    /// The index before, the index afterwards, and the object.
    using MovedSignal = urRTB::Signal<std::size_t, std::size_t, T&>;
    [[nodiscard]] Signal& insertedSignal() noexcept { return inserted_; }
    [[nodiscard]] Signal& erasedSignal() noexcept { return erased_; }
    [[nodiscard]] MovedSignal& movedSignal() noexcept { return moved_; }

private:
    [[nodiscard]] Iterator begin(std::size_t index) const noexcept { return Iterator(*this, index); }

    void emitInserted(std::size_t index, RefCountedObject& object) const override {
        inserted_.emit(index, static_cast<T&>(object));
    }
    void emitErased(std::size_t index, RefCountedObject& object) const override {
        erased_.emit(index, static_cast<T&>(object));
    }
    void emitMoved(std::size_t from, std::size_t to, RefCountedObject& object) const override {
        moved_.emit(from, to, static_cast<T&>(object));
    }

    Signal inserted_;
    Signal erased_;
    MovedSignal moved_;
};

// As a field of its owner it has nothing to save, since it records itself.
template <class T>
void write(Writer& /*writer*/, ObjectList<T> const& /*list*/) {}
template <class T>
void read(Reader& /*reader*/, ObjectList<T>& /*list*/) {}

}  // namespace nxTXN
