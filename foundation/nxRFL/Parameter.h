// The names and defaults of function parameters.
#pragma once

#include <initializer_list>
#include <memory>
#include <type_traits>
#include <utility>

#include "foundation/nxRFL/Stack.h"
#include "foundation/nxRFL/values.h"
#include "foundation/ur/containers.h"

namespace nxRFL {

/// The name of a parameter and its default: `{"width", {"depth", 1.0}}`.
struct Parameter {
    Parameter(char const* parameterName) : name(parameterName) {}
    template <class T>
    Parameter(char const* parameterName, T const& valueWithout) : name(parameterName) {
        auto value = std::make_shared<Stack>();
        Writer writer(*value);
        if constexpr (std::is_array_v<T>) {
            writer.writeText(valueWithout);
        } else {
            write(writer, valueWithout);
        }
        without = std::move(value);
    }

    urString::CString name;
    std::shared_ptr<Stack const> without;  ///< the default, as the only item; null where scripts must pass the argument
};

using Parameters = std::initializer_list<Parameter>;

}  // namespace nxRFL
