// The base of objects whose changes can be undone.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/ur/Export.h"
#include "foundation/urString/CString.h"

namespace nxTXN {

class Manager;
class Serializer;

namespace impl {
class History;
class Replay;
class Lifetimes;
}  // namespace impl

/// The memory of an object, filled in by its size hook.
struct ObjectSize {
    std::size_t base = 0;   ///< bytes of the object itself; each class of a hierarchy raises it to its own size
    std::size_t owned = 0;  ///< further bytes that the object owns

    void raiseBase(std::size_t bytes) noexcept {
        if (base < bytes) base = bytes;
    }
    void add(std::size_t bytes) noexcept { owned += bytes; }
    [[nodiscard]] std::size_t total() const noexcept { return base + owned; }
};

/// An object whose changes its manager records, undoes and redoes.
///
/// Call `transact()` before each change. The manager then reads the fields through `onTransact`, once per transaction,
/// and restores them the same way. The program owns the object (classes that the manager owns derive from
/// `RefCountedObject`); the history forgets an object that is destroyed. Only the manager calls the hooks; overrides
/// call the hook of their base first. `docs/undo.md` states when each of them runs. Used on the manager's thread.
class NX_API Object {
public:
    Object(Object const&) = delete;
    Object& operator=(Object const&) = delete;
    virtual ~Object();

protected:
    /// Names every field that undo must restore, always the same fields in the same order.
    virtual void onTransact(Serializer& serializer);
    /// The fields of this object are restored; those of others perhaps not yet.
    virtual void onTxnRestored();
    /// Undo, redo or abort changed this object, and the whole step is in place.
    virtual void onTxnModified();
    /// The object ceases to exist: its last reference is gone, or the history has released it.
    virtual void onTxnDestroyed();
    /// `isTxnExtant()` has changed.
    virtual void onTxnExtant();
    /// Adds up the object's memory. Called when only the history still keeps the object.
    virtual void onTxnGetSize(ObjectSize& size) const;
    /// The name by which people know the object, for messages. Empty, the default, for none.
    [[nodiscard]] virtual urString::CString onTxnName() const;

public:
    /// Records the current fields for undo and abort. Only the first call in a transaction costs anything. With no
    /// transaction open, or one that is not recorded, the following change is simply applied, unless the manager's
    /// policy makes this throw `std::logic_error` (`UnrecordedChange`).
    void transact();

    /// Whether the object is part of the present state: false while its creation is undone, after its last reference is
    /// gone, and after its manager is gone.
    [[nodiscard]] bool isTxnExtant() const noexcept;

    /// Whether a change made now fits the history: it is recorded, or no step names or made the object. After any
    /// other change, undo restores this object but not what was changed together with it. So classes whose objects
    /// refer to each other refuse such changes.
    [[nodiscard]] bool isTxnChangeable() const noexcept;

    /// Null once the manager is destroyed.
    [[nodiscard]] Manager* txnManager() const noexcept;

protected:
    explicit Object(Manager& manager);

    /// As `transact`, for a change that nobody sees, such as a new link or the first value of a new object: it is
    /// recorded where a transaction records, and `UnrecordedChange` does not apply.
    void transactSilently();

private:
    friend class impl::History;
    friend class impl::Replay;
    friend class impl::Lifetimes;
    friend class RefCountedObject;
    enum class Counting : std::uint8_t { none, references, referencesOfValue };

    Object(Manager& manager, Counting counting);

    impl::History* history_;  // null once the manager is destroyed
    std::uint32_t index_ =
        0;  // the object's index in its manager; after the manager's end, the number of records that need the object
};

}  // namespace nxTXN
