// Everything that scripts can see of native code.
#pragma once

#include <functional>
#include <memory>

#include "foundation/nxRFL/Class.h"
#include "foundation/nxRFL/Exception.h"
#include "foundation/nxRFL/Object.h"
#include "foundation/ur/Account.h"

namespace nxRFL {

/// The classes and tables of functions that native code has registered, in the order of their registration.
///
/// The host owns it, and it outlives every script state that is bound to it. What is registered stays, at its place in
/// memory. From the start it knows "nxRFL::Class", "nxRFL::Stack" and "nxRFL::IteratorState". One thread at a time.
class NX_API Database {
public:
    /// Functions that scripts find under one name; those of the empty name are global.
    struct Table {
        urString::CString name;
        MemberList functions;
    };
    /// An object together with the class that scripts see it as.
    struct Resolved {
        Class const* objectClass;
        void* pointer;  ///< to the object as one of that class
    };

    Database();
    Database(Database const&) = delete;
    Database& operator=(Database const&) = delete;
    ~Database();

    /// Null when no class is registered under that name, or for that type.
    [[nodiscard]] Class* getClass(urString::CString const& name) const noexcept;
    [[nodiscard]] Class* getClass(ur::TypeInfo type) const noexcept;
    /// Takes the class over and gives it back, or the one that has its name already.
    Class& addClass(std::unique_ptr<Class> added);
    [[nodiscard]] ur::vector<std::unique_ptr<Class>> const& classes() const noexcept { return classes_; }

    /// Null when there is no such table.
    [[nodiscard]] Table* getTable(urString::CString const& name) const noexcept;
    /// A new one when there is none of that name.
    Table& addTable(urString::CString const& name);
    [[nodiscard]] ur::vector<std::unique_ptr<Table>> const& tables() const noexcept { return tables_; }

    /// The class by which scripts know an object: that of its own type if that is registered, else the nearest one
    /// that is, as `Class::setHasHiddenSubclasses` says. Raises when the type of the handle itself is not registered.
    /// Requires: `object` is not null.
    [[nodiscard]] Resolved resolve(Object const& object) const;

    /// The name of a class in signatures: the registered one, or else as it reads in source.
    [[nodiscard]] urString::CString nameOf(ur::TypeInfo type) const;

    /// On which the script states that are bound to the database, and what scripts make, count their memory.
    [[nodiscard]] std::shared_ptr<ur::Account> const& account() const noexcept { return account_; }

    /// Is told of errors in script functions that native code called. The default prints them on the standard error.
    void setErrorHandler(std::function<void(Exception const&)> handler);
    void reportError(Exception const& error) const;

private:
    friend class ExposeClassBase;

    [[nodiscard]] static Resolved nearest(Class const& declared, void* object, Class const* exact);
    void forgetSeenTypes() noexcept;

    ur::vector<std::unique_ptr<Class>> classes_;
    ur::vector<std::unique_ptr<Table>> tables_;
    ur::map<urString::CString, Class*> classesByName_;
    ur::map<ur::TypeInfo, Class*> classesByType_;
    std::function<void(Exception const&)> errorHandler_;
    std::shared_ptr<ur::Account> account_ = std::make_shared<ur::Account>();
};

}  // namespace nxRFL
