// Named holders of one value, which may be shared.
#pragma once

#include <cstdint>
#include <utility>

#include "foundation/ur/Export.h"
#include "foundation/ur/Reference.h"
#include "foundation/urRTB/Signal.h"
#include "foundation/urString/CString.h"
#include "plst/Item.h"

namespace nxTXN {
class Manager;
}

namespace nxSupport {

namespace impl {
class JoinedPropertyIterator;
class PropertyHold;
struct JoinedData;
}  // namespace impl

/// The stages of a change that listeners are told of.
enum PropertyModType : std::int32_t {
    ModifyStart = 0,    ///< about to happen: the old value is still in place
    ModifyPerform = 1,  ///< the value has changed
    ModifyEnd = 2,      ///< complete
    ModifyAll = 3,      ///< for `setValue` only: the three stages one after the other
};

/// A named value that listeners follow and validators may correct.
///
/// Properties that share a value form a joined set, which every property belongs to; `join` and the clones make it
/// larger. Setting through one member tells the others, in member order, never the one it was set through. A
/// `TxdProperty` is undone and redone with its manager's history, an `UnTxdProperty` is plain; a set may have both.
/// Held by reference. Main thread only. Listeners and validators may set, join, clone and drop properties and
/// throw; a member added during a change is told the stages that come after.
class NX_API Property {
public:
    using ItemReference = ur::Reference<nxPLST::Item const>;
    using Listener = void (*)(ur::Reference<Property const> property, PropertyModType type);
    /// May put another item into `candidate`.
    using Validator = void (*)(ur::Reference<Property const> property, ItemReference& candidate);
    using ModifySignal = urRTB::Signal<ur::Reference<Property const>, PropertyModType>;
    using ValidationSignal = urRTB::Signal<ur::Reference<Property const>, ItemReference&>;
    using TxnModifiedSignal = urRTB::Signal<ur::Reference<Property>>;

    Property(Property const&) = delete;
    Property& operator=(Property const&) = delete;

protected:
    explicit Property(urString::CString name) : name_(std::move(name)) {}
    virtual ~Property();

public:
    [[nodiscard]] virtual bool isTransacted() const = 0;
    /// Validates and stores, then tells the other members this one stage. With `ModifyAll` as below. An interactive
    /// edit sets with `ModifyStart` once, `ModifyPerform` at each move and `ModifyEnd` at the end.
    virtual bool setValue(ItemReference value, PropertyModType type) = 0;
    /// Validates, then tells the other members of all three stages and stores in between. False when a validator
    /// put another value in the place of this one, which is what is stored then.
    virtual bool setValue(ItemReference value) = 0;
    /// Null when no value was ever stored.
    [[nodiscard]] virtual ItemReference value() const = 0;
    virtual void ref() const = 0;
    virtual void unref() const = 0;
    /// Emitted after undo, redo or abort changed the property or its value. Null for an untransacted property.
    [[nodiscard]] virtual TxnModifiedSignal* txnModifiedSignal() = 0;

    [[nodiscard]] urString::CString const& name() const noexcept { return name_; }
    /// The name after its last point.
    [[nodiscard]] urString::CString basename() const;

    /// For as long as the property lives. Null connects nothing.
    void connect(Listener listener) { listeners().addCallback(listener); }
    void connectValidation(Validator validator) { validators().addCallback(validator); }
    /// Calls `listener(property, type)`, a copy of any callable, until the handle goes. `urRTB::ScopedBlock` of the
    /// handle's connection silences it for a while.
    template <urRTB::Callback<ur::Reference<Property const>, PropertyModType> F>
    [[nodiscard]] urRTB::ScopedConnection subscribe(F&& listener) {
        return listeners().addCallback(std::forward<F>(listener));
    }
    /// Calls `validator(property, candidate)` until the handle goes.
    template <urRTB::Callback<ur::Reference<Property const>, ItemReference&> F>
    [[nodiscard]] urRTB::ScopedConnection subscribeValidation(F&& validator) {
        return validators().addCallback(std::forward<F>(validator));
    }

    /// A new property without a value, or with one.
    [[nodiscard]] static ur::Reference<Property> createTxd(nxTXN::Manager& manager, urString::CString const& name);
    [[nodiscard]] static ur::Reference<Property> createTxd(nxTXN::Manager& manager, urString::CString const& name,
                                                           ItemReference value);
    [[nodiscard]] static ur::Reference<Property> createUnTxd(urString::CString const& name);
    [[nodiscard]] static ur::Reference<Property> createUnTxd(urString::CString const& name, ItemReference value);
    /// A new member of this property's joined set, under its name or another. Nobody is told. Null for a property
    /// that is neither of the two kinds.
    [[nodiscard]] ur::Reference<Property> cloneTxd(nxTXN::Manager& manager) const { return cloneTxd(manager, name_); }
    [[nodiscard]] ur::Reference<Property> cloneTxd(nxTXN::Manager& manager, urString::CString const& name) const;
    [[nodiscard]] ur::Reference<Property> cloneUnTxd() const { return cloneUnTxd(name_); }
    [[nodiscard]] ur::Reference<Property> cloneUnTxd(urString::CString const& name) const;
    /// Moves this property and its whole joined set into that of `other`, whose value they take on without
    /// validation. Each one moved tells its own listeners all three stages; nobody else is told.
    void join(ur::Reference<Property const> other);

protected:
    /// Runs the validators of the first member that has any. False when they changed the candidate.
    [[nodiscard]] bool validate(ItemReference& candidate);
    /// Tells this property's own listeners.
    void send(PropertyModType type);
    /// Tells every other member of the joined set.
    void broadcast(PropertyModType type);

private:
    friend class TxdProperty;
    friend class TxdPropertyData;
    friend class UnTxdProperty;
    friend class UnTxdPropertyData;
    friend class impl::PropertyHold;
    friend struct impl::JoinedData;
    enum class Kind : std::uint8_t { other, transacted, untransacted };

    ModifySignal& listeners() noexcept {
        listened_ = true;
        return modifySignal_;
    }
    ValidationSignal& validators() noexcept {
        validated_ = true;
        return validationSignal_;
    }
    template <class Change>
    bool changeValidated(ItemReference& value, Change change);
    bool modify(ItemReference value, PropertyModType type);
    bool modify(ItemReference value);
    void store(ItemReference value);
    [[nodiscard]] static bool validate(impl::JoinedPropertyIterator& members, ItemReference& candidate);
    void tell(impl::JoinedPropertyIterator& members, PropertyModType type);

    urString::CString const name_;
    ValidationSignal validationSignal_;
    ModifySignal modifySignal_;
    Kind kind_ = Kind::other;
    bool listened_ = false;   ///< somebody has listened to it at some time
    bool validated_ = false;  ///< likewise
};

}  // namespace nxSupport
