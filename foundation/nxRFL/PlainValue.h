// Arguments and results that need no stack.
#pragma once

#include <cstddef>

#include "foundation/urString/CString.h"

namespace nxRFL {

class Class;

/// A view of a value: nothing is copied or counted. Valid during the call that it is passed to. Not initialized,
/// because calls create several of them.
struct PlainValue {
    enum class Kind : unsigned char { none, null, boolean, number, text, object };

    Kind kind;
    bool truth;
    union {
        double number;
        std::size_t size;          ///< of a text, in bytes
        Class const* objectClass;  ///< the class of the object that the pointer refers to
    };
    union {
        void* pointer;
        char const* bytes;
    };
};

/// The result of a call: none, a boolean, a number or a text.
struct PlainResult {
    PlainValue::Kind kind = PlainValue::Kind::none;
    bool truth = false;
    double number = 0;
    urString::CString text;
};

}  // namespace nxRFL
