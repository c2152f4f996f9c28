// An object of a document.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "foundation/nxTXN/ObjectList.h"
#include "foundation/nxTXN/RefCountedObject.h"
#include "foundation/nxTXN/Serializer.h"
#include "foundation/urOS/Uuid.h"
#include "plst/make.h"
#include "support/documents/ObjectClass.h"
#include "support/properties/Property.h"

namespace nxSupport {

class Document;

namespace impl {
class ObjectReader;
class PropertyBinding;
}  // namespace impl

/// A node of the tree of a document: an identity, a class, values under names, and children in order.
///
///     document.edit("Grow", [&] { circle->set("radius", 2.5); });
///
/// The history of the document records what changes in its transactions; other changes are not recorded, as in `nxTXN`.
/// The children of objects that the history names change only where that is recorded: otherwise, and while undo, redo
/// and abort run, the functions that change children return false. Values that differ from the defaults are held in one
/// dictionary; names that the class does not describe are allowed and take any value. Made by `Document::make`, shared
/// by reference. An object that is in no tree can be changed like any other. When the document goes, objects that are
/// left are empty and refuse changes; so do those whose making is undone.
///
/// Signals come after the change; after undo, redo and abort when the whole step is in place. The object's own come
/// before those of the document. An object whose making is undone sends none itself. Listeners may do anything, and
/// throw: then the change stays. Main thread only.
class NX_API Object final : public nxTXN::RefCountedObject {
public:
    using ItemReference = ur::Reference<nxPLST::Item const>;

    /// The children of an object, in order. Valid until they change.
    class Children {
    public:
        using List = nxTXN::ObjectList<Object>;

        [[nodiscard]] std::size_t size() const noexcept { return list_ ? list_->size() : 0; }
        [[nodiscard]] bool empty() const noexcept { return size() == 0; }
        [[nodiscard]] List::Iterator begin() const noexcept { return list_ ? list_->begin() : List::Iterator(); }
        [[nodiscard]] List::Iterator end() const noexcept { return list_ ? list_->end() : List::Iterator(); }
        /// Requires: `index` is below `size()`.
        [[nodiscard]] Object& operator[](std::size_t index) const noexcept { return (*list_)[index]; }
        /// Null beyond the end.
        [[nodiscard]] Object* at(std::size_t index) const noexcept { return list_ ? list_->at(index) : nullptr; }
        /// By linear search; empty when it is no child.
        [[nodiscard]] std::optional<std::size_t> indexOf(Object const& child) const noexcept {
            return list_ ? list_->indexOf(child) : std::nullopt;
        }

    private:
        friend class Object;
        explicit Children(List const* list) noexcept : list_(list) {}

        List const* list_;
    };

    /// Never changes.
    [[nodiscard]] urOS::Uuid const& id() const noexcept { return id_; }
    [[nodiscard]] ObjectClass const& objectClass() const noexcept { return *class_; }
    /// Null once the document is destroyed.
    [[nodiscard]] Document* document() const noexcept { return document_; }

    /// The value, or the default of the class; null if there is neither.
    [[nodiscard]] ItemReference value(urString::CString const& name) const;
    /// The value as a T; `fallback` if it is null or has another shape.
    template <class T>
    [[nodiscard]] T get(urString::CString const& name, T fallback = T()) const {
        return nxPLST::valueOf<T>(value(name), std::move(fallback));
    }
    /// False, with no change, when the description of the property excludes the value. Null resets it to the default.
    /// An equal value changes nothing. The item is shared: do not change it afterwards.
    bool setValue(urString::CString const& name, ItemReference value);
    /// Also false for a value without item form, as `nxPLST::itemOf` says. An empty optional is null.
    template <class T>
    bool set(urString::CString const& name, T const& value) {
        ur::Reference<nxPLST::Item> item;
        return nxPLST::impl::tryConvert(item, value) && setValue(name, std::move(item));
    }
    /// The values that were set, described or not. Null if there are none.
    [[nodiscard]] ur::Reference<nxPLST::Dictionary const> values() const noexcept { return values_; }
    /// The object that the value identifies, when it is in the tree of the document; otherwise null.
    [[nodiscard]] Object* target(urString::CString const& name) const;
    /// Null for none.
    bool setTarget(urString::CString const& name, Object const* target);
    /// An untransacted property for a control: it always has the value of this object, also after undo, and setting it
    /// sets the value as a step of the history, a drag from `ModifyStart` to `ModifyEnd` as one. Numbers are moved into
    /// the range; other wrong values change nothing. Keeps its last value when the object goes. Null without a
    /// document.
    [[nodiscard]] ur::Reference<Property> property(urString::CString const& name);

    /// Null for the root, and for an object that is in no other.
    [[nodiscard]] Object* parent() const noexcept { return parent_; }
    [[nodiscard]] Children children() const noexcept { return Children(children_.get()); }
    /// The place among the children of the parent; 0 without one. Fast for objects that stay near each other; otherwise
    /// a linear search.
    [[nodiscard]] std::size_t index() const noexcept;
    /// Whether it is the root of its document or below it.
    [[nodiscard]] bool isInTree() const noexcept;
    /// Whether it is `other` or below it.
    [[nodiscard]] bool isWithin(Object const& other) const noexcept;
    /// False, with no change, when the classes do not allow it, when `child` has a parent, is the root or holds this
    /// object, or is of another document, beyond the end, and where the history would not know it.
    bool insert(std::size_t index, ur::Reference<Object> const& child);
    bool append(ur::Reference<Object> const& child) { return insert(children().size(), child); }
    /// False when it is no child of this object, and where the history would not know it.
    bool remove(Object& child);
    /// Moves the object to be the child at `index` of `parent`, counted without the object itself. False, with no
    /// change, where `insert` would be false, and for an object without a parent.
    bool moveTo(Object& parent, std::size_t index);

    /// The text under "name"; may be empty.
    [[nodiscard]] urString::CString name() const { return get<urString::CString>("name"); }
    /// The object at a path of names, "Kitchen/Table"; "[2]" is the third child, a leading "/" the top of the tree.
    /// Of several children with one name it is the first. Null when there is none.
    [[nodiscard]] Object* find(std::string_view path);
    /// The path that leads here from the top of the tree: "/" at the top.
    [[nodiscard]] urString::CString path() const;

    /// The object, and the name of the property whose value changed.
    using ChangedSignal = urRTB::Signal<Object&, urString::CString const&>;
    /// The parent, the index, and the child.
    using ChildSignal = urRTB::Signal<Object&, std::size_t, Object&>;
    /// The parent, the old index, the new one, and the child. Moves to another parent are a removal and an insertion.
    using MovedSignal = urRTB::Signal<Object&, std::size_t, std::size_t, Object&>;
    [[nodiscard]] ChangedSignal& changedSignal() { return extras().changed; }
    [[nodiscard]] ChildSignal& insertedSignal() { return extras().inserted; }
    [[nodiscard]] ChildSignal& removedSignal() { return extras().removed; }
    [[nodiscard]] MovedSignal& movedSignal() { return extras().moved; }

protected:
    void onTransact(nxTXN::Serializer& serializer) override;
    void onTxnModified() override;
    void onTxnExtant() override;
    void onTxnGetSize(nxTXN::ObjectSize& size) const override;

private:
    friend class Document;
    friend class impl::ObjectReader;

    /// What few objects have.
    struct Extras {
        ChangedSignal changed;
        ChildSignal inserted;
        ChildSignal removed;
        MovedSignal moved;
        ur::map<urString::CString, ur::Reference<impl::PropertyBinding>, ur::less<urString::CString>> bindings;
        Extras();
        ~Extras();
    };

    Object(Document& document, ur::Reference<ObjectClass const> objectClass, urOS::Uuid const& id,
           ur::Reference<nxPLST::Dictionary> values = {});
    ~Object() override;

    static nxTXN::FieldHandlers const valuesHandlers;
    static nxTXN::FieldHandlers const childrenHandlers;

    [[nodiscard]] Extras& extras();
    /// Made if there is none. Until `followChildren` its changes are not signalled.
    [[nodiscard]] Children::List& childList();
    void followChildren();
    /// Not without a document, nor while its making is undone.
    [[nodiscard]] bool isChangeable() const noexcept;
    /// Also not where undo would restore only some of the objects concerned.
    [[nodiscard]] bool areChildrenChangeable() const noexcept;
    [[nodiscard]] bool mayHold(Object const& child) const noexcept;
    void put(std::size_t index, ur::Reference<Object> const& child);
    void take(std::size_t index, Object& child);
    void store(urString::CString const& name, ItemReference const& value);
    void logChange(urString::CString const& name) noexcept;
    void notifyChanged(urString::CString const& name);
    [[nodiscard]] urString::CString stepFromParent() const;

    urOS::Uuid const id_;
    ur::Reference<ObjectClass const> const class_;
    Document* document_;  ///< null once the document is destroyed
    Object* parent_ = nullptr;
    ur::Reference<nxPLST::Dictionary> values_;  ///< shared with records of the history: see `store`
    ur::Reference<nxPLST::Dictionary> former_;  ///< while it is put back: the values before
    std::unique_ptr<Children::List> children_;  ///< made for the first child
    std::unique_ptr<Extras> extras_;            ///< made for the first signal or property
    std::uint32_t formerIndex_ = 0;             ///< when it became a child, or was moved
    std::int32_t shift_ = 0;                    ///< by which the child found last stood beside its former index
};

}  // namespace nxSupport
