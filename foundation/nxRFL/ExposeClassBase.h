// Registers a class from existing `Function` objects.
#pragma once

#include <initializer_list>
#include <memory>

#include "foundation/nxRFL/Database.h"

namespace nxRFL {

/// Registers a class in a database and fills it. Functions may come in any order; the class keeps them.
///
/// If the database has a class of that name already, fills that class and replaces members of the same names.
/// `ExposeClass` does the same from native functions; most code should use it.
class NX_API ExposeClassBase {
public:
    ExposeClassBase(Database& database, std::unique_ptr<Class> added)
        : database_(database), class_(database.addClass(std::move(added))) {}

    /// Declares `base` a base of the class. The conversions are needed where the two pointers differ or where objects
    /// of unregistered classes must be distinguished.
    void addBase(Class& base, Class::Conversion toBase = nullptr, Class::Conversion toThis = nullptr);
    void addMethod(urString::CString const& name, ur::Reference<Function> function);
    void addStaticMethod(urString::CString const& name, ur::Reference<Function> function);
    /// The same with names for the arguments. Raises, and adds nothing, when there are more names than arguments.
    void addMethod(urString::CString const& name, ur::Reference<Function> function,
                   std::initializer_list<Parameter> parameters);
    void addStaticMethod(urString::CString const& name, ur::Reference<Function> function,
                         std::initializer_list<Parameter> parameters);
    /// Without `setter`, scripts cannot assign.
    void addProperty(urString::CString const& name, ur::Reference<Function> getter, ur::Reference<Function> setter);
    /// For properties that only the object knows: scripts read and assign any name that is no member of the class.
    /// `getter` takes the name, `setter` the name and the value; neither is null. Listings do not show them.
    void addOtherNames(ur::Reference<Function> getter, ur::Reference<Function> setter);
    /// `begin` returns an `IteratorState` for the object. While the state is valid, `value` is called with it for the
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
