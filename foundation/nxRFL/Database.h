// The native classes and functions that scripts can see.
#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "foundation/nxRFL/Class.h"
#include "foundation/nxRFL/Exception.h"
#include "foundation/nxRFL/Object.h"
#include "foundation/ur/Account.h"

namespace nxRFL {

/// The registered classes and tables of functions, in order of registration.
///
/// The host owns it, and it outlives every script state bound to it. Registrations are permanent and keep their
/// addresses. A new database contains "nxRFL::Class", "nxRFL::Stack" and "nxRFL::IteratorState". One thread at a time.
class NX_API Database {
public:
    /// A named group of functions; those with an empty group name are global.
    struct Table {
        urString::CString name;
        MemberList functions;
    };
    /// An object and the class that scripts see it as.
    struct Resolved {
        Class const* objectClass;
        void* pointer;  ///< the object as an instance of that class
    };

    Database();
    Database(Database const&) = delete;
    Database& operator=(Database const&) = delete;
    ~Database();

    /// Null when no class has that name or type.
    [[nodiscard]] Class* getClass(urString::CString const& name) const noexcept;
    [[nodiscard]] Class* getClass(ur::TypeInfo type) const noexcept;
    /// The same for a literal, a standard string or a view, which is not copied.
    template <urString::ForeignText Name>
    [[nodiscard]] Class* getClass(Name const& name) const noexcept {
        return classNamed(urString::viewOf(name));
    }
    /// Takes ownership of the class and returns it. If its name exists already, returns the existing class.
    Class& addClass(std::unique_ptr<Class> added);
    [[nodiscard]] ur::vector<std::unique_ptr<Class>> const& classes() const noexcept { return classes_; }

    /// Null when no table has that name.
    [[nodiscard]] Table* getTable(urString::CString const& name) const noexcept;
    template <urString::ForeignText Name>
    [[nodiscard]] Table* getTable(Name const& name) const noexcept {
        return tableNamed(urString::viewOf(name));
    }
    /// Returns the table of that name; creates it if needed.
    Table& addTable(urString::CString const& name);
    [[nodiscard]] ur::vector<std::unique_ptr<Table>> const& tables() const noexcept { return tables_; }

    /// The class that scripts see for an object: the class of its own type if registered, otherwise the nearest
    /// registered one, as `Class::setHasHiddenSubclasses` says. Raises when the type of the handle itself is not
    /// registered. Requires: `object` is not null.
    [[nodiscard]] Resolved resolve(Object const& object) const;

    /// The name of a class in signatures: its registered name, otherwise its name in source.
    [[nodiscard]] urString::CString nameOf(ur::TypeInfo type) const;

    /// Counts the memory of the bound script states and of what scripts create.
    [[nodiscard]] std::shared_ptr<ur::Account> const& account() const noexcept { return account_; }

    /// The handler receives errors in script functions that native code called. By default they go to standard error.
    void setErrorHandler(std::function<void(Exception const&)> handler);
    void reportError(Exception const& error) const;

private:
    friend class ExposeClassBase;

    [[nodiscard]] Class* classNamed(std::string_view name) const noexcept;
    [[nodiscard]] Table* tableNamed(std::string_view name) const noexcept;
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
