// The base of everything whose changes can be undone.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/ur/Export.h"

namespace nxTXN {

class Manager;
class Serializer;

namespace impl {
class History;
class Replay;
class Lifetimes;
}  // namespace impl

/// What an object occupies, as its size hook fills it in.
struct ObjectSize {
    std::size_t base = 0;   ///< bytes of the object itself; each class of a hierarchy raises it to its own size
    std::size_t owned = 0;  ///< bytes that it owns beside itself

    void raiseBase(std::size_t bytes) noexcept {
        if (base < bytes) base = bytes;
    }
    void add(std::size_t bytes) noexcept { owned += bytes; }
    [[nodiscard]] std::size_t total() const noexcept { return base + owned; }
};

/// An object whose changes its manager records, undoes and redoes.
///
/// Call `transact()` before each change. The manager then asks for the fields through `onTransact`, once per
/// transaction, and asks the same way when it puts them back. The program owns the object (classes that the
/// manager owns derive from `RefCountedObject`); one that goes while the history knows it is forgotten there.
/// The hooks are the manager's to call; overrides call the hook of their base first. `docs/undo.md` states when
/// each of them runs. Used on the thread that uses the manager.
class NX_API Object {
public:
    Object(Object const&) = delete;
    Object& operator=(Object const&) = delete;
    virtual ~Object();

protected:
    /// Names every field that undo is to restore, always the same ones in the same order.
    virtual void onTransact(Serializer& serializer);
    /// The fields of this object have been put back; those of others perhaps not yet.
    virtual void onTxnRestored();
    /// Undo, redo or abort changed this object, and the whole step is in place.
    virtual void onTxnModified();
    /// The object ceases to exist: its last reference has gone, or the history has let go of it.
    virtual void onTxnDestroyed();
    /// `isTxnExtant()` has changed.
    virtual void onTxnExtant();
    /// Adds up what the object occupies. Asked when only the history keeps it any longer.
    virtual void onTxnGetSize(ObjectSize& size) const;

public:
    /// Records the fields as they are now, for undo and abort. Only the first call in a transaction costs anything.
    /// With no transaction open, or one that is not recorded, the change to come is simply applied, unless the
    /// manager's policy has this throw `std::logic_error` (`UnrecordedChange`).
    void transact();

    /// Whether the object is part of the present state: false while its creation is undone, and once its last
    /// reference has gone. Never true after its manager has gone.
    [[nodiscard]] bool isTxnExtant() const noexcept;

    /// Null once the manager has gone.
    [[nodiscard]] Manager* txnManager() const noexcept;

protected:
    explicit Object(Manager& manager);

private:
    friend class impl::History;
    friend class impl::Replay;
    friend class impl::Lifetimes;
    friend class RefCountedObject;
    enum class Counting : std::uint8_t { none, references, referencesOfValue };

    Object(Manager& manager, Counting counting);

    impl::History* history_;   // null once the manager has gone
    std::uint32_t index_ = 0;  // the object's place among those of its manager; after that, the records that need it
};

}  // namespace nxTXN
