// Registering free functions.
#pragma once

#include "foundation/nxRFL/NativeFunction.h"

namespace nxRFL {

/// Fills a table of functions that scripts reach by the table's name, a new one or one that exists.
class NX_API ExposeFunction {
public:
    ExposeFunction(Database& database, urString::CString const& table)
        : database_(database), table_(database.addTable(table)) {}

    void add(urString::CString const& name, ur::Reference<Function> function);
    /// Anything that NativeFunction can call, and what scripts know of its parameters.
    template <class Callable>
    ExposeFunction& add(urString::CString const& name, Callable callable, Parameters parameters = {}) {
        add(name, makeFunction(database_, std::move(callable), parameters));
        return *this;
    }

private:
    Database& database_;
    Database::Table& table_;
};

}  // namespace nxRFL
