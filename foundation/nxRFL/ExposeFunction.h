// Registers free functions.
#pragma once

#include "foundation/nxRFL/NativeFunction.h"

namespace nxRFL {

/// Fills the table of functions that scripts find under a name; creates it if needed.
class NX_API ExposeFunction {
public:
    ExposeFunction(Database& database, urString::CString const& table)
        : database_(database), table_(database.addTable(table)) {}

    void add(urString::CString const& name, ur::Reference<Function> function);
    /// Raises, and adds nothing, when there are more names than arguments.
    void add(urString::CString const& name, ur::Reference<Function> function, Parameters parameters);
    /// Adds a callable that NativeFunction supports. `parameters` describe its parameters to scripts.
    template <class Callable>
    ExposeFunction& add(urString::CString const& name, Callable callable, Parameters parameters = {}) {
        add(name, makeFunction(database_, std::move(callable)), parameters);
        return *this;
    }

private:
    Database& database_;
    Database::Table& table_;
};

}  // namespace nxRFL
