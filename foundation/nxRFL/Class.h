// A native class as scripts see it.
#pragma once

#include <cstddef>
#include <memory>

#include "foundation/nxRFL/Function.h"
#include "foundation/nxRFL/TypeUtil.h"
#include "foundation/ur/Account.h"

namespace nxRFL {

class Database;

/// Something that a script reaches by name in a class or in a table of functions. Lives as long as its database.
struct NX_API Member {
    enum class Kind : unsigned char { method, staticMethod, property, iterator, function };

    Kind kind;
    urString::CString name;
    ur::Reference<Function> function;  ///< of a property the getter, of an iterator the one that begins it
    ur::Reference<Function> second;  ///< of a property the setter, null if read-only; of an iterator the current value
};

/// The members of one class or table, in the order in which their names were first added.
class NX_API MemberList {
public:
    using const_iterator = ur::list<Member>::const_iterator;

    /// Null when there is no such member.
    [[nodiscard]] Member const* find(urString::CString const& name) const noexcept;
    /// A later member takes the place of an earlier one of its name. Calls of that one may be under way.
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
/// The native type is known by its identity, and by how pointers convert between a class and its bases.
class NX_API Class {
public:
    /// Converts a pointer to an object; null when the object is not of the class converted to.
    using Conversion = void* (*)(void* object);
    using AliveTest = bool (*)(void const* object);
    /// A class that this one derives from, and the way there and back.
    struct Base {
        Class* base;
        Conversion toBase;  ///< null where the pointers are the same
        Conversion toThis;  ///< null where that cannot be asked
    };

    Class(urString::CString name, impl::TypeUtil const& util);
    Class(Class const&) = delete;
    Class& operator=(Class const&) = delete;

    [[nodiscard]] urString::CString const& name() const noexcept { return name_; }
    [[nodiscard]] ur::TypeInfo getType() const noexcept { return type_; }
    [[nodiscard]] impl::TypeUtil const& typeUtil() const noexcept { return util_; }
    /// The place of the class among those of its database, from 0 on.
    [[nodiscard]] std::size_t index() const noexcept { return index_; }

    /// Objects of derived classes that the database does not know are treated as objects of this class, unless a class
    /// with this mark is nearer to them. Without it they are treated as what they were handed over as.
    void setHasHiddenSubclasses() noexcept { hasHiddenSubclasses_ = true; }
    [[nodiscard]] bool hasHiddenSubclasses() const noexcept { return hasHiddenSubclasses_; }

    /// For objects that come and go without asking whether a script still knows them: `test` tells whether one is
    /// there. Those that are not are refused as arguments. Classes that get this one as a base later inherit the test.
    void setAliveTest(AliveTest test) noexcept { aliveTest_ = test; }
    [[nodiscard]] bool isAlive(void const* object) const noexcept {
        if (aliveTest_) return aliveTest_(object);
        return !testedBase_ || testedBase_->isAlive(castToBase(const_cast<void*>(object), testedBase_->type_));
    }

    /// For objects that own memory which scripts cause: `charge` has an object charged on the account, once, for as
    /// long as it lives. Called when a script meets the object; throws `ur::BudgetSpent` to keep it from that.
    using ChargeAction = void (*)(void* object, std::shared_ptr<ur::Account> const& account);
    void setCharge(ChargeAction action) noexcept { charge_ = action; }
    void charge(void* object, std::shared_ptr<ur::Account> const& account) const {
        if (charge_) charge_(object, account);
    }

    [[nodiscard]] ur::vector<Base> const& bases() const noexcept { return bases_; }
    [[nodiscard]] MemberList const& members() const noexcept { return members_; }
    /// A member of this class or else of its bases, the first base first. Null when there is none.
    [[nodiscard]] Member const* findMember(urString::CString const& name) const noexcept;

    /// An object of this class as one of class `type`, which is this class or a base; otherwise null.
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
    Class const* testedBase_ = nullptr;  ///< the first whose objects have a test
    ur::vector<Base> bases_;
    ur::vector<Class*> derived_;
    MemberList members_;
    // The types met in objects handed over as this class, with the class that each is seen as and the way to it.
    struct Seen {
        Class const* as;
        std::ptrdiff_t offset;
    };
    mutable ur::map<ur::TypeInfo, Seen> seen_;
};

}  // namespace nxRFL
