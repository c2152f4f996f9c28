// Observers of dynamic calls.
#pragma once

#include "dyd/Arg.h"
#include "foundation/ur/containers.h"

namespace nxDYD {

class Function;

/// Observes the calls of its functions. Does nothing by default: derive from it and override.
///
/// An exception from a hook passes to the caller; later parts of the call do not run.
class NX_API Hooks : public ur::ReferenceCount {
public:
    Hooks() noexcept = default;
    Hooks(Hooks const&) noexcept = default;
    Hooks& operator=(Hooks const&) noexcept = default;
    ~Hooks() override = default;

    /// Called before `function` runs. May change the arguments, also their number.
    virtual void preInvoke(Function* /*function*/, ur::vector<ur::Reference<Arg>>& /*args*/) {}
    /// Called after `function` has returned `result`, which may be null. Not called if it has thrown.
    virtual void postInvoke(Function* /*function*/, ur::vector<ur::Reference<Arg>> const& /*args*/,
                            Arg const* /*result*/) {}
};

}  // namespace nxDYD
