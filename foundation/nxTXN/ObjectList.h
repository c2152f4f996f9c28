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
/// The list records its own changes in the open transaction; each takes a few hundred bytes of history, however long
/// the list is. It holds a reference to each of its objects, which belong to the list's manager; an object may occur
/// several times. Only the order is the list's; each object records its own changes.
///
/// Signals are emitted after a change: at once, and after undo, redo and abort when the whole step is in place, one per
/// change. A listener that applies them in order to its own list gets the same list. An erased object lives until all
/// listeners were called. A listener may change or destroy the list; its changes are signalled after the current ones.
/// An exception from a listener leaves the call that made the change, or is the hook error of the undo, once all
/// signals were emitted.
///
/// Name the list as a field of its owner (`serializer.field(shapes)`), so that their manager can take apart groups that
/// contain each other. One thread.
template <class T>
class ObjectList final : public ObjectListBase {
public:
    explicit ObjectList(Manager& manager) : ObjectListBase(manager) {
        static_assert(std::derived_from<T, RefCountedObject>,
                      "the objects of an nxTXN::ObjectList derive from nxTXN::RefCountedObject");
    }
    /// Uses pieces of at most `mostInPiece` elements, for tests.
    ObjectList(Manager& manager, std::size_t mostInPiece) : ObjectListBase(manager, mostInPiece) {}

    /// False, with no change, for null, for an object of another manager, and beyond the end.
    bool insert(std::size_t index, ur::Reference<T> const& object) { return insertObject(index, object.get()); }
    bool append(ur::Reference<T> const& object) { return insert(size(), object); }

    /// Requires: `index` is below `size()`.
    [[nodiscard]] T& operator[](std::size_t index) const noexcept { return *begin(index); }
    /// Null beyond the end.
    [[nodiscard]] T* at(std::size_t index) const noexcept { return index < size() ? &(*this)[index] : nullptr; }
    /// The first index of the object, by linear search.
    [[nodiscard]] std::optional<std::size_t> indexOf(T const& object) const noexcept {
        for (auto i = begin(); i != end(); ++i) {
            if (&*i == &object) return i.index();
        }
        return std::nullopt;
    }

    /// Invalid after any change.
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
    /// The old index, the new index and the object.
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

// As a field of its owner it saves nothing, since it records itself.
template <class T>
void write(Writer& /*writer*/, ObjectList<T> const& /*list*/) {}
template <class T>
void read(Reader& /*reader*/, ObjectList<T>& /*list*/) {}

}  // namespace nxTXN
