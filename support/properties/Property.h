// Named properties; several may share one value.
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

/// The stages of a change, as listeners receive them.
enum PropertyModType : std::int32_t {
    ModifyStart = 0,    ///< about to happen: the old value is still in place
    ModifyPerform = 1,  ///< the value has changed
    ModifyEnd = 2,      ///< complete
    ModifyAll = 3,      ///< for `setValue` only: the three stages in order
};

/// A named value with listeners, which are notified of changes, and validators, which may correct new values.
///
/// Properties that share a value form a joined set. Every property belongs to one; `join` and the clones enlarge it.
/// Setting through one member notifies the others in member order, but not that member itself. A `TxdProperty` is
/// undone and redone with its manager's history, an `UnTxdProperty` is not; a set may contain both. Held by reference.
/// Main thread only. Listeners and validators may set, join, clone and drop properties and throw. A member added during
/// a change receives the later stages.
class NX_API Property {
public:
    using ItemReference = ur::Reference<nxPLST::Item const>;
    using Listener = void (*)(ur::Reference<Property const> property, PropertyModType type);
    /// May replace the item in `candidate`.
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
    /// Validates and stores, then notifies the other members of this one stage. `ModifyAll` works like the other
    /// overload. An interactive edit sets with `ModifyStart` once, with `ModifyPerform` at each move and with
    /// `ModifyEnd` at the end.
    virtual bool setValue(ItemReference value, PropertyModType type) = 0;
    /// Validates, then notifies the other members of all three stages and stores in between. Returns false if a
    /// validator replaced the value; the replacement is then stored.
    virtual bool setValue(ItemReference value) = 0;
    /// Null if no value was ever stored.
    [[nodiscard]] virtual ItemReference value() const = 0;
    virtual void ref() const = 0;
    virtual void unref() const = 0;
    /// Emitted after undo, redo or abort changed the property or its value. Null for an untransacted property.
    [[nodiscard]] virtual TxnModifiedSignal* txnModifiedSignal() = 0;

    [[nodiscard]] urString::CString const& name() const noexcept { return name_; }
    /// The part of the name after its last point.
    [[nodiscard]] urString::CString basename() const;

    /// Both connect for the lifetime of the property. Null connects nothing.
    void connect(Listener listener) { listeners().addCallback(listener); }
    void connectValidation(Validator validator) { validators().addCallback(validator); }
    /// Calls `listener(property, type)`, a copy of any callable, as long as the handle lives. `urRTB::ScopedBlock`
    /// blocks the handle's connection for a while.
    template <class F>
    [[nodiscard]] urRTB::ScopedConnection subscribe(F&& listener) {
        static_assert(urRTB::Callback<F, ur::Reference<Property const>, PropertyModType>,
                      "a listener of a property is called with (ur::Reference<Property const>, PropertyModType)");
        return listeners().addCallback(std::forward<F>(listener));
    }
    /// Calls `validator(property, candidate)` as long as the handle lives.
    template <class F>
    [[nodiscard]] urRTB::ScopedConnection subscribeValidation(F&& validator) {
        static_assert(urRTB::Callback<F, ur::Reference<Property const>, ItemReference&>,
                      "a validator of a property is called with (ur::Reference<Property const>, ItemReference&)");
        return validators().addCallback(std::forward<F>(validator));
    }

    /// Creates a property without a value, or with one.
    [[nodiscard]] static ur::Reference<Property> createTxd(nxTXN::Manager& manager, urString::CString const& name);
    [[nodiscard]] static ur::Reference<Property> createTxd(nxTXN::Manager& manager, urString::CString const& name,
                                                           ItemReference value);
    [[nodiscard]] static ur::Reference<Property> createUnTxd(urString::CString const& name);
    [[nodiscard]] static ur::Reference<Property> createUnTxd(urString::CString const& name, ItemReference value);
    /// Creates a member of this property's joined set, with the same name or another. Notifies nobody. Null for a
    /// property that is of neither kind.
    [[nodiscard]] ur::Reference<Property> cloneTxd(nxTXN::Manager& manager) const { return cloneTxd(manager, name_); }
    [[nodiscard]] ur::Reference<Property> cloneTxd(nxTXN::Manager& manager, urString::CString const& name) const;
    [[nodiscard]] ur::Reference<Property> cloneUnTxd() const { return cloneUnTxd(name_); }
    [[nodiscard]] ur::Reference<Property> cloneUnTxd(urString::CString const& name) const;
    /// Moves this property and its whole joined set into the set of `other`. They take its value without validation.
    /// Each moved property notifies its own listeners of all three stages; nobody else is notified.
    void join(ur::Reference<Property const> other);

protected:
    /// Runs the validators of the first member that has any. False if they changed the candidate.
    [[nodiscard]] bool validate(ItemReference& candidate);
    /// Notifies this property's own listeners.
    void send(PropertyModType type);
    /// Notifies every other member of the joined set.
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
    void notifyMembers(impl::JoinedPropertyIterator& members, PropertyModType type);

    urString::CString const name_;
    ValidationSignal validationSignal_;
    ModifySignal modifySignal_;
    Kind kind_ = Kind::other;
    bool listened_ = false;   ///< true once there has been a listener
    bool validated_ = false;  ///< true once there has been a validator
};

}  // namespace nxSupport
