// Registering a class whose functions exist already.
#pragma once

#include <memory>

#include "foundation/nxRFL/Database.h"

namespace nxRFL {

/// Enters a class in a database and fills it. Functions may come in any order and are kept by the class.
///
/// When the database has a class of that name already, that one is filled instead: its members of the same names are
/// replaced. `ExposeClass` does the same from native functions, and is what most code wants.
class NX_API ExposeClassBase {
public:
    ExposeClassBase(Database& database, std::unique_ptr<Class> added)
        : database_(database), class_(database.addClass(std::move(added))) {}

    /// Objects of the class are objects of `base` too. The conversions are needed where pointers to the two differ or
    /// where objects of unregistered classes are to be told apart.
    void addBase(Class& base, Class::Conversion toBase = nullptr, Class::Conversion toThis = nullptr);
    void addMethod(urString::CString const& name, ur::Reference<Function> function);
    void addStaticMethod(urString::CString const& name, ur::Reference<Function> function);
    /// Without `setter` scripts cannot assign.
    void addProperty(urString::CString const& name, ur::Reference<Function> getter, ur::Reference<Function> setter);
    /// `begin` gives an `IteratorState` for the object. As long as that is valid, `value` is called with it for the
    /// current entry, and then it advances. A value of the type "object[2]" is two values to the script.
    void addIterator(urString::CString const& name, ur::Reference<Function> begin, ur::Reference<Function> value);

    [[nodiscard]] Class& getClass() const noexcept { return class_; }
    [[nodiscard]] Database& getDB() const noexcept { return database_; }

private:
    void add(Member::Kind kind, urString::CString const& name, ur::Reference<Function> function,
             ur::Reference<Function> second);

    Database& database_;
    Class& class_;
};

}  // namespace nxRFL
