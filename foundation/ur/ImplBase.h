// The base of private implementation classes.
#pragma once

#include "foundation/ur/Export.h"

namespace ur {

/// Base of the objects that public classes keep behind a pointer; deleted through it, never copied.
class NX_API ImplBase {
public:
    ImplBase() = default;
    ImplBase(ImplBase const&) = delete;
    ImplBase& operator=(ImplBase const&) = delete;
    virtual ~ImplBase() = default;
};

}  // namespace ur
