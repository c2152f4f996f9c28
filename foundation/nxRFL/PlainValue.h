// Arguments and results that need no stack.
#pragma once

#include <cstddef>

#include "foundation/urString/CString.h"

namespace nxRFL {

class Class;

/// A value as its owner has it: nothing is copied or counted. It lasts as long as the call that it is passed to. Not
/// initialized: calls make several of them.
struct PlainValue {
    enum class Kind : unsigned char { none, null, boolean, number, text, object };

    Kind kind;
    bool truth;
    union {
        double number;
        std::size_t size;          ///< of a text, in bytes
        Class const* objectClass;  ///< the class that the pointer to the object is of
    };
    union {
        void* pointer;
        char const* bytes;
    };
};

/// The result of a call: none, a truth value, a number or a text.
struct PlainResult {
    PlainValue::Kind kind = PlainValue::Kind::none;
    bool truth = false;
    double number = 0;
    urString::CString text;
};

}  // namespace nxRFL
