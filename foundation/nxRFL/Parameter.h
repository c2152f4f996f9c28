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

/// The name of a parameter and its default: `{"width", {"depth", 1.0}, {"done", nullptr}}`; nullptr is nil.
struct Parameter {
    template <urString::ForeignText Text>
    Parameter(Text const& parameterName) : name(parameterName) {}
    template <urString::ForeignText Text, class T>
    Parameter(Text const& parameterName, T const& valueWithout) : name(parameterName) {
        auto value = std::make_shared<Stack>();
        Writer writer(*value);
        if constexpr (std::is_array_v<T>) {
            writer.writeText(valueWithout);
        } else if constexpr (std::is_null_pointer_v<T>) {
            writer.writeNull();
        } else {
            static_assert(
                requires { write(writer, valueWithout); },
                "no nxRFL::write(Writer&, T const&) for the default of a parameter: list the members of its type "
                "(foundation/ur/describe.h) or add it");
            write(writer, valueWithout);
        }
        without = std::move(value);
    }

    urString::CString name;
    std::shared_ptr<Stack const> without;  ///< the default, as the only item; null where scripts must pass the argument
};

using Parameters = std::initializer_list<Parameter>;

}  // namespace nxRFL
