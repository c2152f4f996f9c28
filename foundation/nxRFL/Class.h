// A native class that scripts see.
#pragma once

#include <cstddef>
#include <memory>

#include "foundation/nxRFL/Function.h"
#include "foundation/nxRFL/TypeUtil.h"
#include "foundation/ur/Account.h"

namespace nxRFL {

class Database;

/// An entry that scripts find by name in a class or a table of functions. Lives as long as its database.
struct NX_API Member {
    enum class Kind : unsigned char { method, staticMethod, property, iterator, function };

    Kind kind;
    urString::CString name;
    ur::Reference<Function> function;  ///< the getter of a property; the begin function of an iterator
    ur::Reference<Function> second;  ///< the setter of a property, null if read-only; the value function of an iterator
};

/// The members of one class or table, in the order in which their names were first added.
class NX_API MemberList {
public:
    using const_iterator = ur::list<Member>::const_iterator;

    /// Null when no member has that name.
    [[nodiscard]] Member const* find(urString::CString const& name) const noexcept;
    /// A later member replaces an earlier one of the same name, even while the earlier one is being called.
    void add(Member member);

    [[nodiscard]] const_iterator begin() const noexcept { return members_.begin(); }
    [[nodiscard]] const_iterator end() const noexcept { return members_.end(); }
    [[nodiscard]] bool empty() const noexcept { return members_.empty(); }

private:
    ur::list<Member> members_;
    ur::vector<Member> replaced_;
};

/// A class of the database: its name, its members and how its objects are held. Owned by the database.
///
/// Identifies the native type, and converts pointers between the class and its bases.
class NX_API Class {
public:
    /// Converts a pointer to an object; null when the object is not of the target class.
    using Conversion = void* (*)(void* object);
    using AliveTest = bool (*)(void const* object);
    /// A base of this class, and the pointer conversions in both directions.
    struct Base {
        Class* base;
        Conversion toBase;  ///< null where the pointers are the same
        Conversion toThis;  ///< null where the conversion cannot be checked
    };

    Class(urString::CString name, impl::TypeUtil const& util);
    Class(Class const&) = delete;
    Class& operator=(Class const&) = delete;

    [[nodiscard]] urString::CString const& name() const noexcept { return name_; }
    [[nodiscard]] ur::TypeInfo getType() const noexcept { return type_; }
    [[nodiscard]] impl::TypeUtil const& typeUtil() const noexcept { return util_; }
    /// The index of the class in its database.
    [[nodiscard]] std::size_t index() const noexcept { return index_; }

    /// Objects of unregistered derived classes are treated as objects of this class, unless a class with this mark is
    /// nearer to them. Without the mark they keep the class that they were passed as.
    void setHasHiddenSubclasses() noexcept { hasHiddenSubclasses_ = true; }
    [[nodiscard]] bool hasHiddenSubclasses() const noexcept { return hasHiddenSubclasses_; }

    /// For objects that may be destroyed while a script still refers to them: `test` returns whether one is alive. Dead
    /// objects are refused as arguments. Classes that later get this class as a base inherit the test.
    void setAliveTest(AliveTest test) noexcept { aliveTest_ = test; }
    [[nodiscard]] bool isAlive(void const* object) const noexcept {
        if (aliveTest_) return aliveTest_(object);
        return !testedBase_ || testedBase_->isAlive(castToBase(const_cast<void*>(object), testedBase_->type_));
    }

    /// For objects that own memory on behalf of scripts: `charge` charges the object to the account, once, for as long
    /// as it lives. Called when a script first receives the object; throws `ur::BudgetSpent` to prevent that.
    using ChargeAction = void (*)(void* object, std::shared_ptr<ur::Account> const& account);
    void setCharge(ChargeAction action) noexcept { charge_ = action; }
    void charge(void* object, std::shared_ptr<ur::Account> const& account) const {
        if (charge_) charge_(object, account);
    }

    [[nodiscard]] ur::vector<Base> const& bases() const noexcept { return bases_; }
    [[nodiscard]] MemberList const& members() const noexcept { return members_; }
    /// A member of this class, otherwise of its bases, the first base first. Null when there is none.
    [[nodiscard]] Member const* findMember(urString::CString const& name) const noexcept;
    /// A property without a name, for the names that are no members: see `ExposeClassBase::addOtherNames`. That of this
    /// class, otherwise of its bases. Null when there is none.
    [[nodiscard]] Member const* otherNames() const noexcept;

    /// Converts an object of this class to class `type`, which is this class or a base; otherwise null.
    [[nodiscard]] void* cast(void* object, ur::TypeInfo type) const noexcept {
        return type == type_ ? object : castToBase(object, type);
    }
    [[nodiscard]] bool isA(Class const& other) const noexcept;

private:
    friend class Database;
    friend class ExposeClassBase;

    [[nodiscard]] void* castToBase(void* object, ur::TypeInfo type) const noexcept;

    urString::CString name_;
    impl::TypeUtil util_;
    ur::TypeInfo type_;
    std::size_t index_ = 0;
    bool hasHiddenSubclasses_ = false;
    AliveTest aliveTest_ = nullptr;
    ChargeAction charge_ = nullptr;
    Class const* testedBase_ = nullptr;  ///< the first class in the hierarchy with an alive test
    ur::vector<Base> bases_;
    ur::vector<Class*> derived_;
    MemberList members_;
    MemberList otherNames_;  ///< one at most
    // Caches the dynamic types of objects passed as this class: the class that scripts see, and the pointer conversion.
    struct Seen {
        Class const* as;
        std::ptrdiff_t offset;
    };
    mutable ur::map<ur::TypeInfo, Seen> seen_;
};

}  // namespace nxRFL
